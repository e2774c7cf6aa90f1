#include "Camera.h"

#include <epoxy/gl.h>

void Camera::bind()
{
    // The library multiplies row vectors and stores rows; OpenGL multiplies column vectors and stores columns. The memory
    // is the same.
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(projMatrix().elements());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(krLinear::ProjMatrix(viewMatrix()).elements());
}

krLinear::Point Camera::eye() const { return viewMatrix().inverse().preMult({0, 0, 0}); }
