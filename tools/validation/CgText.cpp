#include <validation/CgText.h>

#include <common/Words.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace krTools
{

namespace
{

constexpr std::string_view kBlanks = " \t\n";

/// A part of a program, which knows where it stands.
struct Piece
{
    std::size_t position;
    std::string_view text;

    [[nodiscard]] Piece part(std::size_t begin, std::size_t end) const
    {
        return {position + begin, text.substr(begin, end - begin)};
    }
    [[nodiscard]] Piece trimmed() const
    {
        const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
        return part(begin, std::max(begin, text.find_last_not_of(kBlanks) + 1));
    }
    /// What stands before a mark, and what behind it, which is empty when there is no mark.
    [[nodiscard]] std::pair<Piece, Piece> splitAt(std::string_view mark) const
    {
        const std::size_t at = std::min(text.find(mark), text.size());
        return {part(0, at), part(std::min(at + mark.size(), text.size()), text.size())};
    }
};

/// What stands between two marks of a program, without them; nothing when one is missing.
std::optional<Piece> between(std::string_view program, std::string_view from, std::string_view to)
{
    const std::size_t begin = program.find(from);
    const std::size_t end = begin == std::string_view::npos ? begin : program.find(to, begin + from.size());
    if (end == std::string_view::npos)
        return std::nullopt;
    return Piece{0, program}.part(begin + from.size(), end);
}

bool isTexCoord(std::string_view semantic)
{
    constexpr std::string_view kTexCoord = "TEXCOORD";
    return semantic.size() == kTexCoord.size() + 1 && semantic.starts_with(kTexCoord) && semantic.back() >= '0' &&
           semantic.back() <= '7';
}

/// A struct between the stages, and the semantics of the members that every program has.
struct Connector
{
    struct Member
    {
        std::string_view name;
        std::string_view semantic;
    };

    std::string_view name;
    std::string_view begin;
    std::array<Member, 4> standard;
    bool namesSayRegister; ///< the other members are called "_" and their semantic
};

constexpr std::array kConnectors{
    Connector{"app2vert",
              "struct app2vert\n{\n",
              {{{"gObjPos", "POSITION"}, {"gObjNormal", "NORMAL"}, {"gObjTangent", "TEXCOORD0"}, {}}},
              false},
    Connector{"vert2frag",
              "struct vert2frag\n{\n",
              {{{"gWindowPos", "POSITION"},
                {"gWorldPos", "TEXCOORD0"},
                {"gWorldNormal", "TEXCOORD1"},
                {"gWorldTangent", "TEXCOORD2"}}},
              true},
};

/// The semantic that a member has to have; empty when any texture coordinate will do.
std::string_view requiredSemantic(const Connector& connector, std::string_view member)
{
    for (const Connector::Member& standard : connector.standard)
        if (standard.name == member && !member.empty())
            return standard.semantic;
    return connector.namesSayRegister && member.starts_with('_') ? member.substr(1) : std::string_view();
}

/// Checks "float3 name : SEMANTIC", the semicolon aside.
void checkMember(const Connector& connector, Piece member, std::vector<std::string_view>& taken, Findings& findings)
{
    const auto [declaration, rest] = member.splitAt(":");
    const Piece semantic = rest.trimmed();
    const std::string_view declared = declaration.trimmed().text;
    const std::string_view name = declared.substr(declared.find_last_of(kBlanks) + 1);
    const std::string_view required = requiredSemantic(connector, name);
    const auto error = [&](const std::string& text)
    { findings.error(semantic.text.empty() ? member.position : semantic.position, text); };

    if (semantic.text.empty())
        error("member " + inQuotes(name) + " of " + inQuotes(connector.name) + " has no semantic");
    else if (!required.empty() ? semantic.text != required : !isTexCoord(semantic.text))
        error("the semantic of member " + inQuotes(name) + " is " + inQuotes(semantic.text) + ", and should be " +
              (required.empty() ? "one of TEXCOORD0 to TEXCOORD7" : inQuotes(required)));
    else if (std::find(taken.begin(), taken.end(), semantic.text) != taken.end())
        error("two members of " + inQuotes(connector.name) + " have the semantic " + inQuotes(semantic.text));
    taken.push_back(semantic.text);
}

void checkConnector(const Connector& connector, std::string_view program, Findings& findings)
{
    std::optional<Piece> members = between(program, connector.begin, "};");
    if (!members)
    {
        findings.error(0, "this program has no struct " + inQuotes(connector.name));
        return;
    }
    std::vector<std::string_view> taken;
    while (!members->text.empty())
    {
        const auto [line, rest] = members->splitAt("\n");
        const Piece member = line.splitAt(";").first.trimmed();
        if (!member.text.empty() && !member.text.starts_with("//"))
            checkMember(connector, member, taken, findings);
        members = rest;
    }
}

void checkParameters(std::string_view program, Findings& findings)
{
    const std::optional<Piece> list = between(program, "float4 main(", ") : COLOR\n");
    if (!list)
    {
        findings.error(std::min(program.find("float4 main("), program.size()), "this program returns no COLOR");
        return;
    }
    // The opening parenthesis or a comma, until a parameter follows it.
    std::optional<std::size_t> separator = list->position - 1;
    bool inComment = false;
    for (std::size_t i = 0; i < list->text.size(); ++i)
    {
        const char c = list->text[i];
        inComment = c != '\n' && (inComment || list->text.substr(i).starts_with("//"));
        if (inComment || kBlanks.find(c) != std::string_view::npos)
            continue;
        if (c == ',' && separator)
            break;
        separator = c == ',' ? std::optional(list->position + i) : std::nullopt;
    }
    if (separator)
        findings.error(*separator, "no parameter follows");
}

/// Calls the visitor with each word of the program that stands in no comment.
template <class Visitor>
void forEachWord(std::string_view program, Visitor visit)
{
    for (std::size_t i = 0; i < program.size();)
    {
        std::size_t end = i + 1;
        if (program.substr(i).starts_with("//"))
            end = std::min(program.find('\n', i), program.size());
        else if (isWordByte(program[i]))
        {
            while (end < program.size() && isWordByte(program[end]))
                ++end;
            visit(Piece{i, program.substr(i, end - i)});
        }
        i = end;
    }
}

/// The front end takes GLSL's letters for components, and a return without a value from a function that has one.
void checkWords(std::string_view program, Findings& findings)
{
    const std::size_t main = program.rfind(" main("); // the last function; those ahead of it may return nothing
    forEachWord(program,
                [&](const Piece& word)
                {
                    const std::size_t next = program.find_first_not_of(kBlanks, word.position + word.text.size());
                    const bool isMember = word.position > 0 && program[word.position - 1] == '.';
                    if (isMember && word.text.find_first_not_of("stpq") == std::string_view::npos)
                        findings.error(word.position,
                                       inQuotes(word.text) + " names no components: Cg has xyzw and rgba");
                    else if (word.text == "return" && word.position > main && next != std::string_view::npos &&
                             program[next] == ';')
                        findings.error(word.position, "a value is missing: this program returns a colour");
                });
}

} // namespace

void checkCgText(const Source& vertex, const Source& fragment, PairFindings& findings)
{
    for (const Connector& connector : kConnectors)
    {
        checkConnector(connector, vertex.text(), findings.vertex);
        checkConnector(connector, fragment.text(), findings.fragment);
    }
    checkParameters(fragment.text(), findings.fragment);
    checkWords(fragment.text(), findings.fragment);

    const auto structs = [](const Source& program) { return between(program.text(), "struct", "#define"); };
    const std::optional<Piece> written = structs(vertex);
    const std::optional<Piece> read = structs(fragment);
    if (!written || !read || written->text != read->text)
        findings.pair.emplace_back("the vertex and fragment programs connect through different structs");
}

} // namespace krTools
