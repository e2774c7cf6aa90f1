#pragma once
#include "GlContext.h"

#include <memory>

/// Makes a context for pictures: with the X display if there is one that can draw, else with EGL. Nothing shows on the
/// display. Throws a DisplayError.
/// @param width, height  of its own frame buffer, which is for drivers without framebuffer objects; pixels
[[nodiscard]] std::unique_ptr<GlContext> makeOffscreenContext(GraphicsApi api, unsigned width, unsigned height);
