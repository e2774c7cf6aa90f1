#pragma once
#include <epoxy/gl.h>

/// Whether the current driver has framebuffer objects, and glGenerateMipmap with them. OpenGL 2.1 need not.
[[nodiscard]] inline bool hasFramebufferObjects()
{
    return epoxy_gl_version() >= 30 || epoxy_has_gl_extension("GL_ARB_framebuffer_object");
}
