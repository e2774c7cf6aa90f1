#include "Resize.h"

#include "ResizeFootprint.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace krPixels
{

namespace
{

/// Averages a little under a level would be truncated to the level below.
constexpr double kNudge = 0.00001;

/// An average as a component: clamped, and truncated where components are integers.
template <typename Component>
Component stored(double average) noexcept
{
    constexpr double kMaximum = std::is_integral_v<Component> ? 255.0 : 1.0;
    return static_cast<Component>(std::clamp(average + kNudge, 0.0, kMaximum));
}

template <typename Component>
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
    for (int k = 0; k < 4; ++k)
        dst[k] = stored<Component>(sums[k] / total);
}

template <typename Component>
void resizeImage(const Component* src, unsigned srcW, unsigned srcH, Component* dst, unsigned dstW, unsigned dstH)
{
    const auto rows = resizeFootprints(srcH, dstH);
    const auto columns = resizeFootprints(srcW, dstW);
    for (const ResizeFootprint& row : rows)
        for (const ResizeFootprint& column : columns)
        {
            averagePixel(src, srcW, row, column, dst);
            dst += 4;
        }
}

} // namespace

void resize(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned char* dst, unsigned dstW, unsigned dstH)
{
    resizeImage(src, srcW, srcH, dst, dstW, dstH);
}

void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH)
{
    resizeImage(src, srcW, srcH, dst, dstW, dstH);
}

} // namespace krPixels
