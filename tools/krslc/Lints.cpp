#include "Lints.h"

#include <krender/shadergen/InterpolantBank.h>

#include <algorithm>
#include <utility>

using krShadingDag::TokenType;
using krTools::inQuotes;
using krTools::Predecessor;
using krTools::ScannedArgument;
using krTools::ScannedFunction;
using krTools::ScannedStatement;
using krTools::ScannedToken;
using Kind = krTools::ScannedStatement::Kind;

namespace
{

/// A function under inspection, and where its warnings go.
struct Inspection
{
    const krTools::FunctionScanner& scanner;
    const ScannedFunction& function;
    const WarningOptions& warnings;
    krTools::Findings& findings;

    void warn(Warning warning, std::size_t position, std::string text) const
    {
        warnings.warn(findings, warning, position, std::move(text));
    }
    void warn(Warning warning, const ScannedToken& token, std::string text) const
    {
        warn(warning, token.begin, std::move(text));
    }
    [[nodiscard]] const ScannedToken& token(std::size_t i) const { return function.tokens[i]; }
    [[nodiscard]] TokenType typeAt(std::size_t i) const
    {
        return i < function.tokens.size() ? token(i).type : TokenType::EndOfStream;
    }
    [[nodiscard]] std::string_view text(std::size_t i) const { return scanner.text(token(i)); }
    [[nodiscard]] std::string_view resultWord() const
    {
        return function.resultWord ? text(*function.resultWord) : std::string_view();
    }
};

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

// Comments and strings

/// Within a comment or string the tokenizer takes "//" for the beginning of a comment, skips to the next line and leaves
/// out that line's first byte.
void lintLineComment(const Inspection& in, const ScannedToken& comment, std::string_view text)
{
    std::size_t line = text.find('\n');
    const std::size_t inner = text.find("//", 2);
    if (inner >= line)
        return;
    while (++line < text.size())
    {
        const std::size_t end = std::min(text.find('\n', line), text.size());
        const std::string_view carried = text.substr(line, end - line);
        const std::size_t first = carried.find_first_not_of(" \t\r");
        if (first != std::string_view::npos && !carried.substr(first).starts_with("//"))
        {
            in.warn(Warning::SlashesInComment, comment.begin + inner,
                    "a second \"//\" carries this comment over the next line: " + inQuotes(carried.substr(first, 40)));
            return;
        }
        line = end;
    }
}

void lintBlockComment(const Inspection& in, const ScannedToken& comment, std::string_view text)
{
    // The two bytes behind "*/" belong to the comment, even where the source has ended.
    const std::size_t end = comment.end - comment.begin - 2;
    if (const std::size_t hidden = text.find("*/", 2); hidden + 2 < end)
        in.warn(Warning::HiddenCommentEnd, comment.begin + hidden,
                "this \"*/\" does not end the comment: a \"//\" before it hides it");
    if (const std::string_view swallowed = text.substr(end); !isBlank(swallowed))
        in.warn(Warning::CommentSwallowsCode, comment.begin + end + swallowed.find_first_not_of(" \t\r\n"),
                "a comment takes the two bytes behind \"*/\" with it: leave two blanks or an empty line there");
}

void lintComments(const Inspection& in)
{
    for (const ScannedToken& comment : in.function.comments)
    {
        const std::string_view text = in.scanner.text(comment);
        if (text.starts_with("//"))
            lintLineComment(in, comment, text);
        else
            lintBlockComment(in, comment, text);
    }
}

void lintStrings(const Inspection& in)
{
    for (const ScannedToken& token : in.function.tokens)
        if (token.type == TokenType::QuotedString)
            if (const std::size_t slashes = in.scanner.text(token).find("//"); slashes != std::string_view::npos)
                in.warn(Warning::SlashesInString, token.begin + slashes,
                        "\"//\" in a string hides what follows up to the second byte of the next line, a closing quote "
                        "included");
}

// Headers

void lintCommas(const Inspection& in)
{
    for (const ScannedArgument& argument : in.function.arguments)
        if (argument.first > 0 && in.typeAt(argument.first - 1) != TokenType::Comma &&
            &argument != &in.function.arguments.front())
            in.warn(Warning::MissingComma, in.token(argument.first), "a comma is missing before this argument");
}

void lintRanges(const Inspection& in)
{
    const auto check = [&in](const krShadingDag::CompFreqRange& range, unsigned colon)
    {
        if (range == krShadingDag::CompFreqRange{})
            in.warn(Warning::ReversedRange, in.token(colon - 1),
                    "the range " + inQuotes(std::string(in.text(colon - 1)) + ":" + std::string(in.text(colon + 1))) +
                        " ends before it begins and is empty");
    };
    if (in.function.resultWord)
        check(in.function.resultRange, *in.function.resultWord - 2);
    for (const ScannedArgument& argument : in.function.arguments)
        check(argument.range, argument.type - 2);
}

void lintDuplicates(const Inspection& in)
{
    // The parser reports the first input of a taken name itself; outputs it lets pass.
    if (in.function.failure)
        return;
    std::vector<std::pair<std::string_view, unsigned>> names;
    for (const ScannedArgument& argument : in.function.arguments)
        names.emplace_back(in.text(argument.name), argument.name);
    std::sort(names.begin(), names.end());
    for (std::size_t i = 1; i < names.size(); ++i)
        if (names[i].first == names[i - 1].first)
            in.warn(Warning::DuplicateInput, in.token(names[i].second),
                    "another argument is called " + inQuotes(names[i].first) + " too");
}

/// The values that every program has under their own names, and that no input declares.
constexpr std::array<std::string_view, 3> kStandardValues{"gWorldNormal", "gWorldPos", "gWorldTangent"};
constexpr std::string_view kEyePosition = "gEyePos";

bool isStandardValue(std::string_view name)
{
    return std::find(kStandardValues.begin(), kStandardValues.end(), name) != kStandardValues.end();
}

/// The other names that generated programs declare or give a meaning to, in order.
constexpr std::array<std::string_view, 28> kReservedNames{
    "IN",
    "OUT",
    "app2vert",
    kEyePosition,
    "gLightAmbientColor",
    "gLightDiffuseColor",
    "gLightSpecularColor",
    "gLightWorldDir",
    "gObjNormal",
    "gObjPos",
    "gObjTangent",
    "gWindowPos",
    "glstate",
    "main",
    "modelViewProj",
    "mul",
    "oNormal",
    "oTangent",
    "objToWorldMatrix",
    "objToWorldMatrix_invtrans",
    "outLightAmbientColor",
    "outLightDiffuseColor",
    "outLightSpecularColor",
    "outLightWorldDir",
    "outRGBA",
    "samplerCUBE",
    "shadow2DProj",
    "vert2frag",
};
static_assert(std::is_sorted(kReservedNames.begin(), kReservedNames.end()));
constexpr std::array<std::string_view, 3> kReservedPrefixes{"_TEXCOORD", "gl_", "var_"};

bool isReserved(std::string_view name)
{
    return std::binary_search(kReservedNames.begin(), kReservedNames.end(), name) ||
           std::any_of(kReservedPrefixes.begin(), kReservedPrefixes.end(),
                       [name](std::string_view prefix) { return name.starts_with(prefix); });
}

void warnReserved(const Inspection& in, unsigned name)
{
    in.warn(Warning::ReservedName, in.token(name),
            "the generated programs use the name " + inQuotes(in.text(name)) + " themselves");
}

/// Only what is declared by a program can clash in it: uniform and per-vertex inputs.
void lintInputs(const Inspection& in)
{
    const bool isShader = in.function.isDefinition && (in.resultWord() == "material" || in.resultWord() == "light");
    for (const ScannedArgument& argument : in.function.arguments)
    {
        const std::string_view name = in.text(argument.name);
        if (argument.isOutput || isStandardValue(name))
            continue;
        if (argument.range == krShadingDag::kUniformRange || argument.range == krShadingDag::kVertexRange)
        {
            if (isReserved(name))
                warnReserved(in, argument.name);
        }
        else if (isShader && !isReserved(name))
            in.warn(Warning::UndeclaredInput, in.token(argument.name),
                    "no program declares " + inQuotes(name) + ": it is neither \"uniform\" nor \"vertex\"");
    }
}

/// Takes registers for the per-vertex inputs as the Cg target does.
void lintVertexInputs(const Inspection& in)
{
    constexpr unsigned kRegisters = 8;
    InterpolantBank toVertex(kRegisters, false);
    InterpolantBank toFragment(kRegisters, true);
    toVertex.interpolant(0).reserve(true, true, true, false);
    for (unsigned i = 0; i < 3; ++i)
        toFragment.interpolant(i).reserve(true, true, true, false);

    if (!in.function.isDefinition || in.resultWord() == "light")
        return;
    for (const ScannedArgument& argument : in.function.arguments)
    {
        if (argument.isOutput || argument.range != krShadingDag::kVertexRange ||
            isStandardValue(in.text(argument.name)))
            continue;
        const DataType type = in.token(argument.type).dataType;
        bool vertexOk = false;
        bool fragmentOk = false;
        (void)toFragment.allocateInterpolant(dataTypeNumFloats(type), fragmentOk, nullptr, nullptr);
        (void)toVertex.allocateInterpolant(dataTypeNumFloats(type), vertexOk, nullptr, nullptr);
        if (!isFloatVector(type))
            in.warn(Warning::VertexType, in.token(argument.type),
                    std::string("a per-vertex input cannot be of type ") + dataTypeName(type) +
                        ": only float to float4 travel between the stages");
        else if (!vertexOk || !fragmentOk)
            in.warn(Warning::VertexRegisters, in.token(argument.name),
                    "no register is left for " + inQuotes(in.text(argument.name)) + " in Cg programs" +
                        (vertexOk ? " between the stages" : ": seven per-vertex inputs fit"));
    }
}

// Bodies

void lintElse(const Inspection& in, const ScannedStatement& statement)
{
    const ScannedToken& token = in.token(statement.first);
    switch (statement.predecessor)
    {
    case Predecessor::If:
        break;
    case Predecessor::IfOverBareIf:
        in.warn(Warning::DanglingElse, token,
                "this \"else\" goes with the outer \"if\": put braces around the inner one");
        break;
    case Predecessor::ElseIf:
        in.warn(Warning::ElseWithoutIf, token,
                "this \"else\" has no \"if\": an \"else if\" ends with its statement, so put braces around the \"if\" "
                "behind \"else\" "
                "and all that belongs to it");
        break;
    case Predecessor::None:
    case Predecessor::Else:
    case Predecessor::Other:
        in.warn(Warning::ElseWithoutIf, token, "this \"else\" has no \"if\" before it");
        break;
    }
}

void lintCondition(const Inspection& in, const ScannedStatement& statement)
{
    for (std::uint32_t i = statement.first + 2; i < statement.last; ++i)
        if (in.typeAt(i) == TokenType::OpenParen)
        {
            in.warn(Warning::ParenInCondition, in.token(i),
                    "the condition ends at the first \")\": compute what stands in parentheses before the \"if\"");
            return;
        }
}

void lintBraces(const Inspection& in, const ScannedStatement& statement)
{
    for (std::uint32_t i = statement.first; i < statement.last; ++i)
        if (in.typeAt(i) == TokenType::OpenBrace || in.typeAt(i) == TokenType::CloseBrace)
        {
            in.warn(Warning::BraceInStatement, in.token(i),
                    "this " + inQuotes(in.text(i)) + " is part of an ordinary statement" +
                        (i > statement.first ? ": is a \";\" missing before it?" : ""));
            return;
        }
}

/// Finds "for (...) {", "while (...) {" and "do {".
class LoopFinder
{
public:
    explicit LoopFinder(const Inspection& in) : fIn(in) {}

    /// Looks at the next token; ask for all of a body in order.
    void visit(std::size_t i)
    {
        switch (fIn.typeAt(i))
        {
        case TokenType::OpenParen:
            fParens.push_back(i);
            break;
        case TokenType::CloseParen:
            if (!fParens.empty())
            {
                const std::size_t keyword = fParens.back() - 1;
                fParens.pop_back();
                const TokenType type = fIn.typeAt(keyword);
                if (type == TokenType::KeywordFor || type == TokenType::KeywordWhile)
                    check(keyword, i + 1);
            }
            break;
        case TokenType::KeywordDo:
            check(i, i + 1);
            break;
        default:
            break;
        }
    }

    /// The braces of the loops found, in order.
    [[nodiscard]] const std::vector<std::size_t>& braces() const noexcept { return fBraces; }

private:
    void check(std::size_t keyword, std::size_t brace)
    {
        if (fIn.typeAt(brace) != TokenType::OpenBrace)
            return;
        fBraces.push_back(brace);
        fIn.warn(Warning::BracedLoop, fIn.token(keyword),
                 "a loop cannot have a body in braces: its first \";\" ends the statement, and its \"}\" the block "
                 "around it");
    }

    const Inspection& fIn;
    std::vector<std::size_t> fParens;
    std::vector<std::size_t> fBraces;
};

void lintDeclaration(const Inspection& in, std::size_t i)
{
    // A type directly before a name declares it; elsewhere a type is followed by "(".
    if (in.typeAt(i) == TokenType::DataTypeName && in.typeAt(i + 1) == TokenType::Identifier &&
        (isReserved(in.text(i + 1)) || isStandardValue(in.text(i + 1))))
        warnReserved(in, static_cast<unsigned>(i + 1));
}

void lintNumber(const Inspection& in, std::size_t i)
{
    if (in.typeAt(i) != TokenType::Number || in.typeAt(i + 1) != TokenType::Plus)
        return;
    const char last = in.text(i).back();
    if ((last == 'e' || last == 'E') && in.token(i + 1).begin == in.token(i).end)
        in.warn(Warning::ExponentPlus, in.token(i + 1),
                "an exponent takes no plus sign: this is " + inQuotes(in.text(i)) + ", \"+\" and what follows");
}

void lintStatements(const Inspection& in)
{
    LoopFinder loops(in);
    const std::size_t bodyBegin =
        in.function.statements.empty() ? in.function.tokens.size() : in.function.statements.front().first;
    for (std::size_t i = bodyBegin; i < in.function.tokens.size(); ++i)
    {
        loops.visit(i);
        lintDeclaration(in, i);
        lintNumber(in, i);
    }

    // A statement that holds a brace is reported once, by the warning that knows most about it.
    bool isCutCondition = false;
    std::size_t loop = 0;
    for (const ScannedStatement& statement : in.function.statements)
    {
        const bool afterCutCondition = std::exchange(isCutCondition, false);
        switch (statement.kind)
        {
        case Kind::If:
            lintCondition(in, statement);
            isCutCondition = std::any_of(in.function.tokens.begin() + statement.first + 2,
                                         in.function.tokens.begin() + statement.last,
                                         [](const ScannedToken& token) { return token.type == TokenType::OpenParen; });
            break;
        case Kind::Else:
            lintElse(in, statement);
            break;
        case Kind::Illuminance:
            if (in.resultWord() == "light")
                in.warn(Warning::IlluminanceInLight, in.token(statement.first),
                        "a light's own illuminance block stays in the program as it is");
            break;
        case Kind::Opaque:
        {
            const bool isIlluminance = in.typeAt(statement.first) == TokenType::KeywordIlluminance;
            if (isIlluminance)
                in.warn(Warning::IlluminanceArguments, in.token(statement.first),
                        "\"illuminance\" takes no arguments: without a \"{\" behind it this is an ordinary statement");
            while (loop < loops.braces().size() && loops.braces()[loop] < statement.first)
                ++loop;
            const bool isLoop = loop < loops.braces().size() && loops.braces()[loop] <= statement.last;
            if (!isIlluminance && !isLoop && !afterCutCondition)
                lintBraces(in, statement);
            break;
        }
        case Kind::Block:
        case Kind::Empty:
            break;
        }
    }
}

} // namespace

void lint(const krTools::FunctionScanner& scanner, const ScannedFunction& function, const WarningOptions& warnings,
          krTools::Findings& findings)
{
    const Inspection in{scanner, function, warnings, findings};
    lintComments(in);
    lintStrings(in);
    lintCommas(in);
    lintRanges(in);
    lintDuplicates(in);
    lintInputs(in);
    lintVertexInputs(in);
    lintStatements(in);
}
