#include "FlatPainter.h"

#include "DeviceBuffer.h"
#include "GlMatrix.h"
#include "OwnProgram.h"

#include <cstddef>
#include <initializer_list>

namespace
{

constexpr GLuint kPlace = 0;
constexpr GLuint kColor = 1;
constexpr std::array kAttributes{"place", "color"};

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

} // namespace

FlatPainter::FlatPainter() : fProgram(linkOwnProgram(kVertexShader, kFragmentShader, kAttributes))
{
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
    glVertexAttrib3fv(kColor, color.data());
    drawElements(GL_LINES, places, edges);
}

void FlatPainter::drawTriangles(const GeometryData& places, const GeometryDataIndex& triangles,
                                const krLinear::ProjMatrix& toClip) const
{
    begin(toClip);
    drawElements(GL_TRIANGLES, places, triangles);
}

void FlatPainter::drawElements(GLenum mode, const GeometryData& places, const GeometryDataIndex& list) const
{
    DeviceBuffer::of(places).bind();
    glEnableVertexAttribArray(kPlace);
    glVertexAttribPointer(kPlace, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    DeviceBuffer::of(list).bind();
    glDrawElements(mode, static_cast<GLsizei>(list.count()), GL_UNSIGNED_INT, nullptr);
    glDisableVertexAttribArray(kPlace);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glUseProgram(0);
}
