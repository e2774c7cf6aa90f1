#include "GlProgram.h"

#include <common/Diagnostics.h>
#include <common/Findings.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace
{

std::string infoLog(GLuint object, decltype(glGetShaderiv) query, decltype(glGetShaderInfoLog) read)
{
    GLint size = 0;
    query(object, GL_INFO_LOG_LENGTH, &size);
    std::string text(static_cast<std::size_t>(std::max(size, 1)), '\0');
    GLsizei length = 0;
    read(object, size, &length, text.data());
    text.resize(static_cast<std::size_t>(length));
    return text;
}

void skipBlanks(std::string_view& text) { text.remove_prefix(std::min(text.find_first_not_of(" \t\r"), text.size())); }

/// One message of the driver.
struct DriverMessage
{
    std::size_t line; ///< of the program, from 1; 0 if the message names none
    std::string text;
};

/// Takes a number off the front of a text, with white space ahead of it.
/// @return  whether there was one; one that is too large counts as 0
bool takeNumber(std::string_view& text, std::size_t& number)
{
    skipBlanks(text);
    number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
    return error != std::errc::invalid_argument;
}

/// Takes a sign or word off the front of a text, with white space ahead of it.
bool take(std::string_view& text, std::string_view word)
{
    std::string_view rest = text;
    skipBlanks(rest);
    if (!rest.starts_with(word))
        return false;
    text = rest.substr(word.size());
    return true;
}

/// Takes the place off the front of a driver's message: "0:12(5): error: ", "0(12) : error C1: " or "ERROR: 0:12: ".
/// @return  the line; 0, and nothing is taken, when there is none
std::size_t takePlace(std::string_view& message)
{
    std::string_view text = message;
    std::size_t line = 0;
    std::size_t other = 0;
    (void)take(text, "ERROR:");
    if (!takeNumber(text, other))
        return 0;
    if (text.starts_with(':'))
    {
        text.remove_prefix(1);
        if (!takeNumber(text, line) ||
            (text.starts_with('(') && !(take(text, "(") && takeNumber(text, other) && take(text, ")"))))
            return 0;
    }
    else if (!take(text, "(") || !takeNumber(text, line) || !take(text, ")"))
        return 0;
    if (!take(text, ":"))
        return 0;
    if (take(text, "error"))
        (void)take(text, ":");
    skipBlanks(text);
    if (line > 0)
        message = text;
    return line;
}

/// Splits a driver's log into messages.
std::vector<DriverMessage> driverMessages(std::string_view log)
{
    std::vector<DriverMessage> messages;
    while (!log.empty())
    {
        std::string_view text = log.substr(0, log.find('\n'));
        log.remove_prefix(std::min(text.size() + 1, log.size()));
        if (text.empty() || text.find("warning") != std::string_view::npos)
            continue;
        const std::size_t line = takePlace(text);
        messages.push_back({line, std::string(text)});
    }
    return messages;
}

/// Prints the driver's messages, one for each place: further ones are consequences of the first, or are about the copy of
/// the same code for another light.
void report(const Material& material, const krTools::Source& program, bool isFragment, const std::string& log,
            krTools::MessageOutput& output)
{
    // What the front end has accepted is valid in every target.
    const std::string blame =
        material.isChecked ? "by a fault of krender's, the driver rejects " : "the driver rejects ";
    krTools::Findings withoutOrigin;
    std::set<std::pair<const void*, std::size_t>> places;
    std::size_t shown = 0;
    std::size_t left = 0;
    for (const DriverMessage& message : driverMessages(log))
    {
        if (shown == krTools::Findings::kMaxKept)
        {
            ++left;
            continue;
        }
        if (message.line == 0)
        {
            ++shown;
            krTools::printError("krview", program.name() + ": " + message.text, output);
            continue;
        }
        const std::size_t begin = program.lineBegin(message.line);
        const krFrontend::LineOrigin origin = isFragment ? material.origin(message.line) : krFrontend::LineOrigin();
        if (!places.emplace(origin.module, origin.module ? origin.offset : begin).second)
            continue;
        ++shown;
        if (!origin.module)
        {
            withoutOrigin.error(begin, blame + "it: " + message.text);
            continue;
        }
        std::string_view line = program.place(begin).text;
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        krFrontend::Diagnostic diagnostic;
        diagnostic.range = {origin.offset, origin.offset};
        diagnostic.text = blame + krTools::inQuotes(line) + " in line " + std::to_string(message.line) + " of " +
                          program.name() + ": " + message.text;
        krTools::print(origin.module->sources(), diagnostic, output);
    }
    krTools::print(program, withoutOrigin, output);
    if (left > 0)
        krTools::printError("krview", std::to_string(left) + " more messages of the driver are not shown", output);
}

} // namespace

GlProgram::GlProgram() : fId(glCreateProgram()) {}

GlProgram::~GlProgram() { glDeleteProgram(fId); }

bool GlProgram::attach(const Material& material, const krTools::Source& text, GLenum stage,
                       krTools::MessageOutput& output) const
{
    const GLuint shader = glCreateShader(stage);
    const char* const characters = text.contents().asChar();
    const auto length = static_cast<GLint>(text.size());
    glShaderSource(shader, 1, &characters, &length);
    glCompileShader(shader);
    GLint ok = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    if (ok == GL_FALSE)
        report(material, text, stage == GL_FRAGMENT_SHADER, infoLog(shader, glGetShaderiv, glGetShaderInfoLog), output);
    glAttachShader(fId, shader);
    glDeleteShader(shader);
    return ok != GL_FALSE;
}

std::unique_ptr<GlProgram> GlProgram::link(const Material& material, krTools::MessageOutput& output)
{
    std::unique_ptr<GlProgram> program(new GlProgram);
    const bool vertexOk = program->attach(material, material.vertexProgram, GL_VERTEX_SHADER, output);
    const bool fragmentOk = program->attach(material, material.fragmentProgram, GL_FRAGMENT_SHADER, output);
    if (!vertexOk || !fragmentOk)
        return nullptr;
    glLinkProgram(program->fId);
    GLint ok = GL_FALSE;
    glGetProgramiv(program->fId, GL_LINK_STATUS, &ok);
    if (ok != GL_FALSE)
    {
        program->fUniforms.emplace(program->fId, material);
        return program;
    }
    for (const DriverMessage& message : driverMessages(infoLog(program->fId, glGetProgramiv, glGetProgramInfoLog)))
        krTools::printError("krview", "the driver cannot link the programs: " + message.text, output);
    return nullptr;
}
