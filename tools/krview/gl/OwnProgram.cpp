#include "OwnProgram.h"

#include "DisplayError.h"
#include "GlFeatures.h"

#include <array>

namespace
{

void attach(GLuint program, GLenum stage, const char* text)
{
    const bool isVertex = stage == GL_VERTEX_SHADER;
    const char* const head =
        !hasFixedFunctions()
            ? (isVertex ? "#version 330\n" : "#version 330\n#define textureCube texture\nout vec4 result;\n")
        : isVertex ? "#version 120\n#define in attribute\n#define out varying\n"
                   : "#version 120\n#define in varying\n#define result gl_FragColor\n";
    const GLuint shader = glCreateShader(stage);
    const std::array texts{head, text};
    glShaderSource(shader, static_cast<GLsizei>(texts.size()), texts.data(), nullptr);
    glCompileShader(shader);
    glAttachShader(program, shader);
    glDeleteShader(shader);
}

} // namespace

GLuint linkOwnProgram(const char* vertexText, const char* fragmentText, std::span<const char* const> attributes)
{
    const GLuint program = glCreateProgram();
    attach(program, GL_VERTEX_SHADER, vertexText);
    attach(program, GL_FRAGMENT_SHADER, fragmentText);
    for (GLuint i = 0; i < attributes.size(); ++i)
        glBindAttribLocation(program, i, attributes[i]);
    glLinkProgram(program);
    GLint ok = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &ok);
    if (ok != GL_FALSE)
        return program;
    glDeleteProgram(program);
    throw DisplayError("the driver refuses a program of krview's own");
}
