#pragma once
#include "Camera.h"
#include "ShadowPass.h"
#include "StageObject.h"

#include <krender/platform/Linear.h>

/// Draws surfaces with their materials. One is drawn at a time: begun, drawn at some places, and ended.
class SurfacePainter
{
public:
    /// Everything is borrowed.
    SurfacePainter(Camera& camera, const ShadowPass& shadows) : fCamera(camera), fShadows(shadows) {}

    /// Gets ready to draw a part of an object, which must have its device copies.
    void begin(StageObject& object, std::size_t part);
    /// Draws it.
    /// @param placement  from object to scene space
    void draw(const krLinear::AffineMatrix& placement);
    /// Draws some of its triangles.
    /// @param buffer       holds their vertices, on the device
    /// @param first, count  of the vertices in the buffer
    void drawTriangles(const krLinear::AffineMatrix& placement, GLuint buffer, unsigned first, unsigned count);
    void end();

private:
    /// Binds what OpenGL 2.1 has names of its own for.
    void bindFixedInputs() const;
    /// Sets the matrices of the program for an object.
    void place(const krLinear::AffineMatrix& placement);

    Camera& fCamera;
    const ShadowPass& fShadows;
    Surface* fSurface = nullptr;
    const GeometryDataIndex* fTriangles = nullptr;
    Groups fGroups;
};
