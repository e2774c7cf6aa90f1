#include "FlatPainter.h"

#include "DeviceBuffer.h"
#include "DisplayError.h"
#include "GlFeatures.h"
#include "GlMatrix.h"

#include <cstddef>
#include <initializer_list>

namespace
{

constexpr GLuint kPlace = 0;
constexpr GLuint kColor = 1;

// Written in the words of new versions, which a few lines ahead make known to old ones.
constexpr const char* kVertexShader = R"(in vec3 place;
in vec3 color;
out vec3 shade;
uniform mat4 toClip;
void main()
{
	shade = color;
	gl_Position = toClip * vec4(place, 1.0);
}
)";
constexpr const char* kFragmentShader = R"(in vec3 shade;
void main()
{
	result = vec4(shade, 1.0);
}
)";

void attach(GLuint program, GLenum stage, const char* text)
{
    const bool isVertex = stage == GL_VERTEX_SHADER;
    const char* const head = !hasFixedFunctions() ? (isVertex ? "#version 330\n" : "#version 330\nout vec4 result;\n")
                             : isVertex           ? "#version 120\n#define in attribute\n#define out varying\n"
                                                  : "#version 120\n#define in varying\n#define result gl_FragColor\n";
    const GLuint shader = glCreateShader(stage);
    const std::array texts{head, text};
    glShaderSource(shader, static_cast<GLsizei>(texts.size()), texts.data(), nullptr);
    glCompileShader(shader);
    glAttachShader(program, shader);
    glDeleteShader(shader);
}

} // namespace

FlatPainter::FlatPainter() : fProgram(glCreateProgram())
{
    attach(fProgram, GL_VERTEX_SHADER, kVertexShader);
    attach(fProgram, GL_FRAGMENT_SHADER, kFragmentShader);
    glBindAttribLocation(fProgram, kPlace, "place");
    glBindAttribLocation(fProgram, kColor, "color");
    glLinkProgram(fProgram);
    GLint ok = GL_FALSE;
    glGetProgramiv(fProgram, GL_LINK_STATUS, &ok);
    if (ok == GL_FALSE)
        throw DisplayError("the driver refuses a program of krview's own");
    fToClip = glGetUniformLocation(fProgram, "toClip");
    glGenBuffers(1, &fVertices);
}

FlatPainter::~FlatPainter()
{
    glDeleteBuffers(1, &fVertices);
    glDeleteProgram(fProgram);
}

void FlatPainter::begin(const krLinear::ProjMatrix& toClip) const
{
    glUseProgram(fProgram);
    glUniformMatrix4fv(fToClip, 1, GL_FALSE, asFloats(toClip).data());
}

void FlatPainter::draw(GLenum mode, std::span<const FlatVertex> vertices, const krLinear::ProjMatrix& toClip) const
{
    begin(toClip);
    glBindBuffer(GL_ARRAY_BUFFER, fVertices);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size_bytes()), vertices.data(), GL_STREAM_DRAW);
    constexpr GLsizei kStride = sizeof(FlatVertex);
    for (const GLuint attribute : {kPlace, kColor})
        glEnableVertexAttribArray(attribute);
    glVertexAttribPointer(kPlace, 3, GL_FLOAT, GL_FALSE, kStride, nullptr);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an offset into the buffer goes as a pointer
    const auto* const colors = reinterpret_cast<const void*>(offsetof(FlatVertex, color));
    glVertexAttribPointer(kColor, 3, GL_FLOAT, GL_FALSE, kStride, colors);
    glDrawArrays(mode, 0, static_cast<GLsizei>(vertices.size()));
    for (const GLuint attribute : {kPlace, kColor})
        glDisableVertexAttribArray(attribute);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glUseProgram(0);
}

void FlatPainter::drawEdges(const GeometryData& places, const GeometryDataIndex& edges,
                            const std::array<GLfloat, 3>& color, const krLinear::ProjMatrix& toClip) const
{
    begin(toClip);
    DeviceBuffer::of(places).bind();
    glEnableVertexAttribArray(kPlace);
    glVertexAttribPointer(kPlace, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    glVertexAttrib3fv(kColor, color.data());
    DeviceBuffer::of(edges).bind();
    glDrawElements(GL_LINES, static_cast<GLsizei>(edges.count()), GL_UNSIGNED_INT, nullptr);
    glDisableVertexAttribArray(kPlace);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glUseProgram(0);
}
