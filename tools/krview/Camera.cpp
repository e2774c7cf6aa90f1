#include "Camera.h"

#include <epoxy/gl.h>

void Camera::bind()
{
    // Row vectors row by row lie in memory as column vectors column by column.
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(projMatrix().elements());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(krLinear::ProjMatrix(viewMatrix()).elements());
}

krLinear::Point Camera::eye() const { return viewMatrix().inverse().preMult({0, 0, 0}); }
