#pragma once

namespace krPixels
{

/// Rewrites a height field of h rows of w RGBA pixels as a normal map, in place. Null or an empty image does nothing.
/// Reads pixels ahead of the buffer when h or w is 1.
void convertToNormalMap(unsigned char* data, unsigned w, unsigned h, float scale) noexcept;
void convertToNormalMap(float* data, unsigned w, unsigned h, float scale) noexcept;

} // namespace krPixels
