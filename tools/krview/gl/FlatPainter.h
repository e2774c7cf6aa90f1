#pragma once
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <epoxy/gl.h>

#include <array>
#include <span>

/// A point of a plain drawing.
struct FlatVertex
{
    std::array<GLfloat, 3> place;
    std::array<GLfloat, 3> color; ///< red, green, blue from 0 to 1
};

/// Draws lines and areas of plain colours, without lights, in every context.
class FlatPainter
{
public:
    /// Needs a current context. Throws a DisplayError when the driver refuses its program.
    FlatPainter();
    FlatPainter(const FlatPainter&) = delete;
    FlatPainter& operator=(const FlatPainter&) = delete;
    ~FlatPainter();

    /// @param mode    GL_LINES, GL_TRIANGLE_STRIP, ...
    /// @param toClip  from the vertices' space to clip space
    void draw(GLenum mode, std::span<const FlatVertex> vertices, const krLinear::ProjMatrix& toClip) const;
    /// Draws a list of lines in one colour.
    /// @param places, edges  with device copies
    void drawEdges(const GeometryData& places, const GeometryDataIndex& edges, const std::array<GLfloat, 3>& color,
                   const krLinear::ProjMatrix& toClip) const;
    /// Draws a list of triangles, for its depths.
    void drawTriangles(const GeometryData& places, const GeometryDataIndex& triangles,
                       const krLinear::ProjMatrix& toClip) const;

private:
    void drawElements(GLenum mode, const GeometryData& places, const GeometryDataIndex& list) const;
    void begin(const krLinear::ProjMatrix& toClip) const;

    GLuint fProgram;
    GLuint fVertices = 0; ///< the buffer of what draw() is given
    GLint fToClip;
};
