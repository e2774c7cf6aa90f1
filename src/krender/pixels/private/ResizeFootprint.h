#pragma once
#include <cstdint>
#include <vector>

namespace krPixels
{

/// The source cells, along one axis, that a destination cell averages, and their weights; those between the first and the
/// last have a weight of 1. A footprint is never empty: it ends above 0 and below the source's size.
struct ResizeFootprint
{
    [[nodiscard]] double weight(std::uint32_t cell) const noexcept
    {
        return cell == first ? firstWeight : cell == last ? lastWeight : 1.0;
    }

    std::uint32_t first;
    std::uint32_t last;
    double firstWeight;
    double lastWeight;
};

/// The footprints of all destination cells. Deliberate: that of cell i is centred on i and not on i + 1/2, so pictures move
/// by half a destination pixel.
[[nodiscard]] std::vector<ResizeFootprint> resizeFootprints(std::uint32_t srcSize, std::uint32_t dstSize);

} // namespace krPixels
