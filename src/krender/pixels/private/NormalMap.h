#pragma once

namespace krPixels
{

/// Rewrites a height field of h rows of w RGBA pixels as a normal map, in place. Nothing happens when data is null or a
/// size is 0. With h = 1 the row becomes a copy of the w pixels that precede the buffer; with w = 1 and more rows, the
/// first pixel takes two components of the one pixel that precedes it.
void convertToNormalMap(unsigned char* data, unsigned w, unsigned h, float scale) noexcept;
void convertToNormalMap(float* data, unsigned w, unsigned h, float scale) noexcept;

} // namespace krPixels
