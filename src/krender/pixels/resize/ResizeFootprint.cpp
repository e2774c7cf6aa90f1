#include "krender/pixels/private/ResizeFootprint.h"

#include <algorithm>
#include <cmath>

namespace krPixels
{

namespace
{

/// The part of a cell that lies in [low, high].
double coverage(double cell, double low, double high) noexcept
{
    if (low > cell)
        return std::min(cell + 1.0, high) - low;
    return cell + 1.0 > high ? high - cell : 1.0;
}

} // namespace

std::vector<ResizeFootprint> resizeFootprints(std::uint32_t srcSize, std::uint32_t dstSize)
{
    const double scale = static_cast<double>(srcSize) / dstSize;
    std::vector<ResizeFootprint> footprints(dstSize);
    for (std::uint32_t i = 0; i < dstSize; ++i)
    {
        const double low = (i - 0.5) * scale;
        const double high = (i + 0.5) * scale;
        const double first = std::max(std::floor(low), 0.0);
        const double last = std::min(std::floor(high), srcSize - 1.0);
        footprints[i] = {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last),
                         coverage(first, low, high), coverage(last, low, high)};
    }
    return footprints;
}

} // namespace krPixels
