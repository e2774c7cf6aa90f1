#pragma once
#include "GraphicsApi.h"

/// An OpenGL context, which is the current one while it lives.
class GlContext
{
public:
    GlContext() = default;
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;
    virtual ~GlContext() = default;

protected:
    /// Makes the context that has just become current fit for drawing. Throws a DisplayError when it lacks what krview
    /// needs.
    static void prepare(GraphicsApi api);
};

/// Why there is no context of an interface, behind "the display" or the like.
[[nodiscard]] constexpr const char* whyNoContext(GraphicsApi api) noexcept
{
    return api == GraphicsApi::Gl33 ? " has no core profile of OpenGL 3.3" : " has no OpenGL context";
}
