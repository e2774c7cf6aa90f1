#include "ProgramOrigins.h"

#include <common/FunctionScanner.h>

#include <krender/shadergen/LightSpec.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

/// A text without its white space: the generator changes the indentation of what it copies.
std::string compact(std::string_view text)
{
    std::string result;
    std::copy_if(text.begin(), text.end(), std::back_inserter(result),
                 [](char c) { return std::isspace(static_cast<unsigned char>(c)) == 0; });
    return result;
}

/// What of a function's source may stand in a program.
class FunctionText
{
public:
    FunctionText(const krTools::Source& source, std::string_view name) : fSource(source)
    {
        krTools::FunctionScanner scanner(source);
        krTools::ScannedFunction function;
        while (scanner.next(function))
            if (function.isDefinition && function.name && scanner.text(function.tokens[*function.name]) == name)
            {
                for (const krTools::ScannedArgument& argument : function.arguments)
                {
                    const krTools::ScannedToken& token = function.tokens[argument.name];
                    fArguments.emplace(scanner.text(token), token.begin);
                }
                for (const krTools::ScannedStatement& statement : function.statements)
                    if (statement.kind != krTools::ScannedStatement::Kind::Block)
                        addLines(function.tokens[statement.first].begin, function.tokens[statement.last].end);
                return;
            }
    }

    /// The next line of that text, going around at the end.
    [[nodiscard]] std::optional<Origin> findNext(const std::string& line)
    {
        for (std::size_t i = 0; i < fLines.size(); ++i)
            if (const std::size_t at = (fNext + i) % fLines.size(); fLines[at].first == line)
            {
                fNext = at + 1;
                return Origin{&fSource, fLines[at].second};
            }
        return std::nullopt;
    }
    [[nodiscard]] std::optional<Origin> findArgument(const std::string& name) const
    {
        const auto found = fArguments.find(name);
        return found == fArguments.end() ? std::nullopt : std::optional(Origin{&fSource, found->second});
    }

    [[nodiscard]] std::size_t next() const noexcept { return fNext; }
    void setNext(std::size_t next) noexcept { fNext = next; }

private:
    void addLines(std::size_t begin, std::size_t end)
    {
        const std::string_view text = fSource.text();
        while (begin < end)
        {
            const std::size_t lineEnd = std::min(text.find('\n', begin), end);
            const std::size_t first = std::min(text.find_first_not_of(" \t\r", begin), lineEnd);
            if (first < lineEnd)
                fLines.emplace_back(compact(text.substr(first, lineEnd - first)), first);
            begin = lineEnd + 1;
        }
    }

    const krTools::Source& fSource;
    std::vector<std::pair<std::string, std::size_t>> fLines; ///< compact, and where it stands
    std::map<std::string, std::size_t> fArguments;
    std::size_t fNext = 0;
};

/// The name that a line declares, such as "uv" for "attribute vec2 uv;"; empty when it declares none.
std::string declaredName(const std::string& line)
{
    const std::size_t end = line.rfind(';');
    if (end == std::string::npos)
        return "";
    std::size_t begin = end;
    while (begin > 0 && (std::isalnum(static_cast<unsigned char>(line[begin - 1])) != 0 || line[begin - 1] == '_'))
        --begin;
    const std::string name = line.substr(begin, end - begin);
    return name.starts_with("var_") ? name.substr(4) : name;
}

} // namespace

std::optional<Origin> findOrigin(const Material& material, const krTools::Source& program, std::size_t line)
{
    FunctionText materialText(material.source(), material.spec().name().view());
    std::vector<FunctionText> lightTexts;
    for (const LightSpec& light : material.lights())
        lightTexts.emplace_back(material.lightSource(light), light.spec->name().view());

    // An illuminance block stands in the program once for each light, each time behind the light's own code.
    FunctionText* current = &materialText;
    std::size_t copies = 0;
    std::size_t blockBegin = 0;
    std::string_view rest = program.text();
    std::string text;
    std::optional<Origin> origin;
    for (std::size_t i = 0; i < line; ++i)
    {
        text = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(text.size() + 1, rest.size()));
        if (text.ends_with("// LIGHT-SPECIFIC INPUTS") && !lightTexts.empty())
        {
            const std::size_t light = copies++ % lightTexts.size();
            blockBegin = light == 0 ? materialText.next() : blockBegin;
            current = &lightTexts[light];
            current->setNext(0);
        }
        else if (text.ends_with("// MATERIAL-SPECIFIC INPUTS"))
        {
            current = &materialText;
            current->setNext(blockBegin);
        }
        origin = current->findNext(compact(text));
    }
    if (origin)
        return origin;

    const std::string name = declaredName(text);
    if (const auto argument = materialText.findArgument(name))
        return argument;
    for (std::size_t i = 0; i < lightTexts.size(); ++i)
        if (const std::string_view key = material.lights()[i].name.view(); name.starts_with(key))
            if (const auto argument = lightTexts[i].findArgument(name.substr(key.size())))
                return argument;
    return std::nullopt;
}
