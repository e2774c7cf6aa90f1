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

/// Whether the current driver has frame buffers that code what is written as sRGB.
[[nodiscard]] inline bool hasSrgbFrames()
{
    return epoxy_gl_version() >= 30 || epoxy_has_gl_extension("GL_ARB_framebuffer_sRGB") ||
           epoxy_has_gl_extension("GL_EXT_framebuffer_sRGB");
}

/// Whether the current driver has textures of floats. OpenGL 2.1 need not.
[[nodiscard]] inline bool hasFloatTextures()
{
    return epoxy_gl_version() >= 30 || epoxy_has_gl_extension("GL_ARB_texture_float");
}

/// Whether the current driver can filter across the edges of cube maps. OpenGL 2.1 need not.
[[nodiscard]] inline bool hasSeamlessCubes()
{
    return epoxy_gl_version() >= 32 || epoxy_has_gl_extension("GL_ARB_seamless_cube_map");
}
