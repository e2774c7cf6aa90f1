#pragma once
#include "GlContext.h"

/// A context without a display, by EGL.
class EglContext : public GlContext
{
public:
    /// Throws a DisplayError.
    /// @param width, height  of its own frame buffer, pixels
    EglContext(GraphicsApi api, unsigned width, unsigned height);
    ~EglContext() override;

private:
    /// @return  whether the context is there and current; else there may be a part of what it needs
    bool make(void* display, GraphicsApi api, unsigned width, unsigned height);
    void release() noexcept;

    void* fDisplay = nullptr; ///< the types of EGL are pointers
    void* fContext = nullptr;
    void* fSurface = nullptr;
};
