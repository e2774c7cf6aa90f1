#include "Camera.h"

#include <epoxy/gl.h>

void Camera::bind()
{
    // The memory of both sides' matrices is the same: see asFloats().
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(projMatrix().elements());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(krLinear::ProjMatrix(viewMatrix()).elements());
}

krLinear::ProjMatrix Camera::worldToClip() const { return krLinear::ProjMatrix(viewMatrix()) * projMatrix(); }

krLinear::Point Camera::eye() const { return viewMatrix().inverse().preMult({0, 0, 0}); }
