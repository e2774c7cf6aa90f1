#include "GlProgram.h"

#include <common/Diagnostics.h>
#include <common/Findings.h>

#include <algorithm>
#include <cstddef>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
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

/// One message of the driver.
struct DriverMessage
{
    std::size_t line; ///< of the program, from 1; 0 if the message names none
    std::string text;
};

/// Splits a driver's log into messages. Drivers write "0:12(5): error: text", "0(12) : error C1: text" or
/// "ERROR: 0:12: text".
std::vector<DriverMessage> driverMessages(const std::string& log)
{
    static const std::regex kPlace(
        R"(^\s*(?:ERROR:\s*)?\d+(?::(\d+)(?:\(\d+\))?|\((\d+)\))\s*:\s*(?:error\s*:?\s*)?(.*)$)");
    std::vector<DriverMessage> messages;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);)
    {
        std::smatch match;
        if (line.find("warning") != std::string::npos)
            continue;
        if (std::regex_match(line, match, kPlace))
            messages.push_back({std::stoul(match[1].matched ? match[1] : match[2]), match[3]});
        else if (!line.empty())
            messages.push_back({0, line});
    }
    return messages;
}

/// Prints the driver's messages, one for each place: further ones are consequences of the first, or are about the copy of
/// the same code for another light.
void report(const Material& material, const krTools::Source& program, bool isFragment, const std::string& log)
{
    // What the front end has accepted is valid in every target.
    const std::string blame =
        material.isChecked ? "by a fault of krender's, the driver rejects " : "the driver rejects ";
    krTools::Findings withoutOrigin;
    std::set<std::pair<const void*, std::size_t>> places;
    for (const DriverMessage& message : driverMessages(log))
    {
        if (message.line == 0)
        {
            krTools::printError("krview", program.name() + ": " + message.text);
            continue;
        }
        const std::size_t begin = program.lineBegin(message.line);
        const krFrontend::LineOrigin origin = isFragment ? material.origin(message.line) : krFrontend::LineOrigin();
        if (!places.emplace(origin.module, origin.module ? origin.offset : begin).second)
            continue;
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
        krTools::print(origin.module->sources(), diagnostic);
    }
    krTools::print(program, withoutOrigin);
}

} // namespace

GlProgram::GlProgram() : fId(glCreateProgram()) {}

GlProgram::~GlProgram() { glDeleteProgram(fId); }

bool GlProgram::attach(const Material& material, const krTools::Source& text, GLenum stage) const
{
    const GLuint shader = glCreateShader(stage);
    const char* const characters = text.contents().asChar();
    const auto length = static_cast<GLint>(text.size());
    glShaderSource(shader, 1, &characters, &length);
    glCompileShader(shader);
    GLint ok = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    if (ok == GL_FALSE)
        report(material, text, stage == GL_FRAGMENT_SHADER, infoLog(shader, glGetShaderiv, glGetShaderInfoLog));
    glAttachShader(fId, shader);
    glDeleteShader(shader);
    return ok != GL_FALSE;
}

std::unique_ptr<GlProgram> GlProgram::link(const Material& material)
{
    std::unique_ptr<GlProgram> program(new GlProgram);
    const bool vertexOk = program->attach(material, material.vertexProgram, GL_VERTEX_SHADER);
    const bool fragmentOk = program->attach(material, material.fragmentProgram, GL_FRAGMENT_SHADER);
    if (!vertexOk || !fragmentOk)
        return nullptr;
    glLinkProgram(program->fId);
    GLint ok = GL_FALSE;
    glGetProgramiv(program->fId, GL_LINK_STATUS, &ok);
    if (ok != GL_FALSE)
        return program;
    for (const DriverMessage& message : driverMessages(infoLog(program->fId, glGetProgramiv, glGetProgramInfoLog)))
        krTools::printError("krview", "the driver cannot link the programs: " + message.text);
    return nullptr;
}
