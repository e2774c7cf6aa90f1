#include "GlProgram.h"

#include <common/Findings.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using krTools::Severity;

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

/// A line of a program without the white space at its beginning.
std::string trimmedLine(const krTools::Source& program, std::size_t line)
{
    std::istringstream lines{std::string(program.text())};
    std::string text;
    for (std::size_t i = 0; i < line; ++i)
        std::getline(lines, text);
    text.erase(0, text.find_first_not_of(" \t"));
    return text;
}

std::size_t lineBegin(const krTools::Source& program, std::size_t line)
{
    std::size_t begin = 0;
    for (std::size_t i = 1; i < line; ++i)
        begin = std::min(program.text().find('\n', begin) + 1, program.size());
    return begin;
}

/// Prints the driver's messages, one for each place: further ones are consequences of the first, or are about the copy of
/// the same code for another light.
void report(const Material& material, const krTools::Source& program, bool isFragment, const std::string& log)
{
    // What the front end has accepted is valid in every target.
    const std::string blame =
        material.isChecked ? "by a fault of krender's, the driver rejects " : "the driver rejects ";
    std::map<std::string, std::pair<krTools::Source, krTools::Findings>> findings;
    std::set<std::pair<std::string, std::size_t>> places;
    for (const DriverMessage& message : driverMessages(log))
    {
        if (message.line == 0)
        {
            krTools::print(stderr, "krview", Severity::Error, program.name() + ": " + message.text);
            continue;
        }
        const Material::Origin origin = isFragment ? material.origin(message.line) : Material::Origin();
        const std::string name = origin.file ? origin.file->name() : program.name();
        const std::size_t position = origin.file ? origin.position : lineBegin(program, message.line);
        if (!places.emplace(name, position).second)
            continue;
        const std::string text = origin.file ? krTools::inQuotes(trimmedLine(program, message.line)) + " in line " +
                                                   std::to_string(message.line) + " of " + program.name()
                                             : "it";
        const krTools::Source source = origin.file ? krTools::Source(name, std::string(origin.file->text())) : program;
        findings.try_emplace(name, source, krTools::Findings())
            .first->second.second.error(position, blame + text + ": " + message.text);
    }
    for (auto& [name, inSource] : findings)
    {
        inSource.second.sort();
        krTools::print(stderr, inSource.first, inSource.second);
    }
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
        krTools::print(stderr, "krview", Severity::Error, "the driver cannot link the programs: " + message.text);
    return nullptr;
}
