#pragma once
#include "GlxContext.h"

#include <memory>

/// A context on an X display that has no window.
class GlxPbuffer : public GlContext
{
public:
    /// Throws a DisplayError, also when the display that DISPLAY names cannot be opened.
    /// @param width, height  of its own frame buffer, pixels
    GlxPbuffer(GraphicsApi api, unsigned width, unsigned height);
    ~GlxPbuffer() override;

private:
    /// Stays open until the program ends: without it the driver is unloaded, and loses what it holds for itself.
    _XDisplay* fDisplay;
    unsigned long fPbuffer = 0;
    std::unique_ptr<GlContext> fContext;
};
