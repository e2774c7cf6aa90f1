#include <common/ProgramBounds.h>

#include <common/Words.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace krTools
{

namespace
{

constexpr std::size_t kMostOperators = 10000;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Passes over what is no code.
class CodeScanner
{
public:
    CodeScanner(std::string_view text, std::size_t begin) : fText(text), fAt(begin) {}

    /// The position of the next byte of code; the text's size at its end.
    std::size_t next()
    {
        for (; fAt < fText.size(); ++fAt)
        {
            const char c = fText[fAt];
            if (c == '\n')
                fInText = false;
            // Some take a quotation mark for the beginning of a text, in which no comment begins: what may be code counts.
            else if (c == '"')
                fInText = true;
            else if (!fInText && fText.substr(fAt).starts_with("//"))
                fAt = std::min(fText.find('\n', fAt), fText.size()) - 1;
            else if (!fInText && fText.substr(fAt).starts_with("/*"))
                fAt = std::min(fText.find("*/", fAt + 2), fText.size() - 1) + 1;
            else
                return fAt++;
        }
        return fText.size();
    }

private:
    std::string_view fText;
    std::size_t fAt;
    bool fInText = false;
};

/// Whether the byte makes the tree of an expression deeper; the point of a number does not.
bool isOperator(std::string_view text, std::size_t at)
{
    if (text[at] == '.')
        return !(at > 0 && isDigit(text[at - 1])) && !(at + 1 < text.size() && isDigit(text[at + 1]));
    return std::string_view("+-*/%<>=!&|^~?:[").find(text[at]) != std::string_view::npos;
}

/// Whether a line is one of those that give a light's sampler its own name within the light's code, and end that: its
/// name is longer than the one it stands for, so that none of them makes a program grow.
bool isAlias(std::string_view line)
{
    const auto takeWord = [&line]
    {
        line.remove_prefix(line.starts_with(' ') ? 1 : 0);
        const auto end = std::find_if_not(line.begin(), line.end(), isWordByte);
        const std::string_view word = line.substr(0, static_cast<std::size_t>(end - line.begin()));
        line.remove_prefix(word.size());
        return word;
    };
    line.remove_prefix(1);
    const std::string_view directive = takeWord();
    const std::string_view name = takeWord();
    if (directive == "undef")
        return !name.empty() && line.empty();
    const std::string_view meaning = takeWord();
    return directive == "define" && line.empty() && meaning.size() > name.size() && meaning.ends_with(name);
}

} // namespace

Findings findUnbounded(const Source& program)
{
    const std::string_view text = program.text();
    Findings findings;
    // All of a source's own code stands in the main function.
    const std::size_t main = text.find(" main(");
    CodeScanner code(text, main == std::string_view::npos ? 0 : main);
    std::size_t operators = 0;
    for (std::size_t at; (at = code.next()) < text.size();)
    {
        const char c = text[at];
        if (c == '#' && !isAlias(text.substr(at, text.find('\n', at) - at)))
            findings.error(at, "a line of the preprocessor; a program with one is neither checked nor drawn");
        if (c == ';' || c == '{' || c == '}')
            operators = 0;
        else if (isOperator(text, at) && ++operators == kMostOperators + 1)
            findings.error(at, "an expression of more than " + std::to_string(kMostOperators) +
                                   " operators; a program with one is neither checked nor drawn");
    }
    return findings;
}

} // namespace krTools
