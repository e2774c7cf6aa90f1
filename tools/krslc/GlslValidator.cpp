#include "GlslValidator.h"

#include <common/Words.h>

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>

#include <algorithm>
#include <charconv>

namespace
{

constexpr int kGlslVersion = 120;

/// Calls the visitor with each line that begins with "ERROR: " or "WARNING: ", without that word.
template <class Visitor>
void forEachMessage(std::string_view log, Visitor visit)
{
    while (!log.empty())
    {
        const std::size_t end = std::min(log.find('\n'), log.size());
        const std::string_view line = log.substr(0, end);
        for (const auto& [word, severity] : {std::pair{std::string_view("ERROR: "), krTools::Severity::Error},
                                             std::pair{std::string_view("WARNING: "), krTools::Severity::Warning}})
            if (line.starts_with(word))
                visit(severity, line.substr(word.size()));
        log.remove_prefix(std::min(end + 1, log.size()));
    }
}

std::size_t lineBegin(std::string_view text, unsigned line)
{
    std::size_t begin = 0;
    for (; line > 1; --line)
        begin = std::min(text.find('\n', begin), text.size() - 1) + 1;
    return begin;
}

/// Where a word stands in a line, on its own and not within another; otherwise where the line's text begins.
std::size_t findWord(std::string_view line, std::string_view word)
{
    for (std::size_t at = line.find(word); !word.empty() && at != std::string_view::npos; at = line.find(word, at + 1))
        if (krTools::isWholeWord(line, at, at + word.size()))
            return at;
    return std::min(line.find_first_not_of(" \t"), line.size());
}

/// The text with single blanks within and none around it.
std::string withoutExtraBlanks(std::string_view text)
{
    std::string result;
    for (const char c : text)
        if (c != ' ' || (!result.empty() && result.back() != ' '))
            result += c;
    return result.substr(0, result.find_last_not_of(' ') + 1);
}

/// Turns "1:12: 'name' : text" into a finding on the word quoted, in line 12 of the program; string 0 is what stands
/// ahead of it. A message without a place is a summary of the others, and so is that compilation has ended.
void addMessage(const krTools::Source& program, krTools::Severity severity, std::string_view message,
                krTools::Findings& findings)
{
    if (!message.starts_with("1:") && !message.starts_with("0:"))
        return;
    unsigned line = 0;
    const char* const end = message.data() + message.size();
    const auto [rest, error] = std::from_chars(message.data() + 2, end, line);
    if (error != std::errc() || rest == end)
        return;
    const std::string text = withoutExtraBlanks({rest + 1, end});
    if (text.ends_with("compilation terminated"))
        return;

    std::size_t position = message[0] == '1' ? lineBegin(program.text(), line) : 0;
    const std::string_view word =
        text.starts_with('\'') ? std::string_view(text).substr(1, text.find('\'', 1) - 1) : std::string_view();
    position += findWord(program.place(position).text, word);
    constexpr std::string_view kNoWord = "'' : ";
    findings.add({position, severity, {}, text.starts_with(kNoWord) ? text.substr(kNoWord.size()) : text});
}

bool compile(glslang::TShader& shader, const krTools::Source& program, krTools::Findings& findings)
{
    const std::string_view text = program.text();
    const std::string_view ahead = text.starts_with(kGlslPreamble) ? std::string_view("") : kGlslPreamble;
    const char* const strings[] = {ahead.data(), text.data()};
    const int lengths[] = {static_cast<int>(ahead.size()), static_cast<int>(text.size())};
    shader.setStringsWithLengths(strings, lengths, 2);
    const bool ok = shader.parse(GetDefaultResources(), kGlslVersion, false, EShMsgDefault);
    forEachMessage(shader.getInfoLog(), [&](krTools::Severity severity, std::string_view message)
                   { addMessage(program, severity, message, findings); });
    if (!ok && !findings.hasErrors())
        findings.error(0, "this program does not compile");
    return ok;
}

} // namespace

GlslValidator::GlslValidator() { glslang::InitializeProcess(); }

GlslValidator::~GlslValidator() { glslang::FinalizeProcess(); }

std::vector<std::string> GlslValidator::validate(const krTools::Source& vertex, krTools::Findings& vertexFindings,
                                                 const krTools::Source& fragment,
                                                 krTools::Findings& fragmentFindings) const
{
    glslang::TShader vertexShader(EShLangVertex);
    glslang::TShader fragmentShader(EShLangFragment);
    const bool vertexOk = compile(vertexShader, vertex, vertexFindings);
    const bool fragmentOk = compile(fragmentShader, fragment, fragmentFindings);
    std::vector<std::string> errors;
    if (!vertexOk || !fragmentOk)
        return errors;

    glslang::TProgram program;
    program.addShader(&vertexShader);
    program.addShader(&fragmentShader);
    if (!program.link(EShMsgDefault))
    {
        forEachMessage(program.getInfoLog(),
                       [&errors](krTools::Severity, std::string_view message) { errors.emplace_back(message); });
        if (errors.empty())
            errors.emplace_back("the programs do not link");
    }
    return errors;
}
