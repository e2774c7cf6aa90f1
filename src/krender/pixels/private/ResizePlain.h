#pragma once
#include "krender/pixels/private/ResizeFootprint.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace krPixels
{

/// Added to every average, so that one that rounding left just below a level is not truncated to the level below.
inline constexpr double kResizeNudge = 0.00001;

/// One pixel of a resized image, weight by weight in double precision. The fast forms give its results bit for bit, and
/// call it where their own precision does not decide the result.
template <class Component>
void averagePixel(const Component* src, std::size_t srcW, const ResizeFootprint& rows, const ResizeFootprint& columns,
                  Component* dst) noexcept
{
    double total = 0.0;
    double sums[4] = {};
    for (std::uint32_t r = rows.first; r <= rows.last; ++r)
    {
        const double rowWeight = rows.weight(r);
        for (std::uint32_t c = columns.first; c <= columns.last; ++c)
        {
            const Component* pixel = src + 4 * (r * srcW + c);
            const double weight = columns.weight(c) * rowWeight;
            total += weight;
            for (int k = 0; k < 4; ++k)
                sums[k] += pixel[k] * weight;
        }
    }
    constexpr double kMaximum = std::is_integral_v<Component> ? 255.0 : 1.0;
    for (int k = 0; k < 4; ++k)
        dst[k] = static_cast<Component>(std::clamp(sums[k] / total + kResizeNudge, 0.0, kMaximum));
}

/// A whole image, pixel by pixel.
template <class Component>
void resizePlainly(const Component* src, unsigned srcW, unsigned srcH, Component* dst, unsigned dstW, unsigned dstH)
{
    const auto columns = resizeFootprints(srcW, dstW);
    for (const ResizeFootprint& row : resizeFootprints(srcH, dstH))
        for (const ResizeFootprint& column : columns)
        {
            averagePixel(src, srcW, row, column, dst);
            dst += 4;
        }
}

} // namespace krPixels
