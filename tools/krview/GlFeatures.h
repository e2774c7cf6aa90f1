#pragma once
#include <epoxy/gl.h>

/// Whether the current context has what OpenGL 2.1 has and core profiles left out: the matrices and attributes with names
/// of their own.
[[nodiscard]] inline bool hasFixedFunctions()
{
    GLint profile = 0;
    if (epoxy_gl_version() >= 32)
        glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    return (profile & GL_CONTEXT_CORE_PROFILE_BIT) == 0;
}

/// Whether the current driver has framebuffer objects, and glGenerateMipmap with them. OpenGL 2.1 need not.
[[nodiscard]] inline bool hasFramebufferObjects()
{
    return epoxy_gl_version() >= 30 || epoxy_has_gl_extension("GL_ARB_framebuffer_object");
}
