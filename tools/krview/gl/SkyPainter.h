#pragma once
#include "Texture.h"

#include <krender/spatial/IHWCamera.h>

#include <epoxy/gl.h>

/// Draws what is around the scene, far away, in every context.
class SkyPainter
{
public:
    /// Needs a current context. Throws a DisplayError when the driver refuses its program.
    SkyPainter();
    SkyPainter(const SkyPainter&) = delete;
    SkyPainter& operator=(const SkyPainter&) = delete;
    ~SkyPainter();

    /// Fills the viewport, behind everything.
    /// @param sky     a cube map
    /// @param camera  a perspective one
    /// @param codes   whether what is read is light that is to be coded as sRGB
    void draw(Texture& sky, const IHWCamera& camera, bool codes) const;

private:
    GLuint fProgram;
    GLuint fVertices = 0;
    GLint fCodes;
};
