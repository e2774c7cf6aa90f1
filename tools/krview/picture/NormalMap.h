#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>

/// Turns a picture of heights, the first components, into a normal map of its size and format that tiles without a seam.
/// @param scale  of the heights
[[nodiscard]] Ref<PixelArray2D> normalMap(const PixelArray2D& heights, float scale);
