#include <validation/GlslangLog.h>

#include <common/Words.h>

#include <glslang/Public/ShaderLang.h>

#include <charconv>
#include <optional>
#include <string>

namespace krTools
{

namespace
{

/// Where a word stands in a line, on its own and not within another; otherwise where the line's text begins.
std::size_t findWord(std::string_view line, std::string_view word)
{
    for (std::size_t at = line.find(word); !word.empty() && at != std::string_view::npos; at = line.find(word, at + 1))
        if (isWholeWord(line, at, at + word.size()))
            return at;
    return std::min(line.find_first_not_of(" \t"), line.size());
}

/// The text with single blanks, none at its ends, and names as the program has them.
std::string tidied(std::string_view text)
{
    std::string result;
    while (!text.empty())
    {
        if (text.starts_with(kHiddenPrefix))
        {
            text.remove_prefix(kHiddenPrefix.size());
            continue;
        }
        if (text[0] != ' ' || (!result.empty() && result.back() != ' '))
            result += text[0];
        text.remove_prefix(1);
    }
    return result.substr(0, result.find_last_not_of(' ') + 1);
}

/// Takes a number and a colon off the front of a text; nothing when they are not there.
std::optional<unsigned> takeNumber(std::string_view& text)
{
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest == end || *rest != ':')
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(rest - text.data()) + 1);
    return number;
}

} // namespace

void startGlslang()
{
    struct Process
    {
        Process() { glslang::InitializeProcess(); }
        Process(const Process&) = delete;
        Process& operator=(const Process&) = delete;
        ~Process() { glslang::FinalizeProcess(); }
    };
    static const Process process;
}

void addLog(std::string_view log, const Source& program, unsigned string, Findings& findings)
{
    forEachMessage(
        log,
        [&](Severity severity, std::string_view message)
        {
            // "string:line: 'word' : text". What has no place only sums up what has.
            const std::optional<unsigned> itsString = takeNumber(message);
            const std::optional<unsigned> line = itsString ? takeNumber(message) : std::nullopt;
            if (!line)
                return;
            std::string text = tidied(message);
            if (text.ends_with("compilation terminated") || findings.countInstead(severity))
                return;
            std::size_t position = itsString == string ? program.lineBegin(*line) : 0;
            const std::string_view word =
                text.starts_with('\'') ? std::string_view(text).substr(1, text.find('\'', 1) - 1) : std::string_view();
            position += findWord(program.place(position).text, word);
            constexpr std::string_view kNoWord = "'' : ";
            findings.add({position, severity,
                          word.empty() && text.starts_with(kNoWord) ? text.substr(kNoWord.size()) : std::move(text)});
        });
}

} // namespace krTools
