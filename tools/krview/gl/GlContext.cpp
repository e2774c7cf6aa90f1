#include "GlContext.h"

#include "DisplayError.h"

#include <epoxy/gl.h>

#include <string>

void GlContext::prepare(GraphicsApi api)
{
    if (epoxy_gl_version() < 21)
        throw DisplayError("OpenGL 2.1 is wanted, and the driver has " +
                           std::string(reinterpret_cast<const char*>(glGetString(GL_VERSION))));
    if (api != GraphicsApi::Gl33)
        return;
    // Core profiles draw nothing without a vertex array object; one is enough, and goes with the context.
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
}
