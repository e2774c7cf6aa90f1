#pragma once
#include <cstdint>
#include <vector>

namespace krPixels
{

/// The source cells, along one axis, that a destination cell averages, with their weights. Cells between the first and
/// the last count in full. It is never empty: its upper end is positive and stays below the source's size.
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

/// The footprints of all destination cells. That of cell i has the width of a destination cell and is centred on i and
/// not on i + 1/2: pictures that went through here before must come out the same, half a pixel off.
[[nodiscard]] std::vector<ResizeFootprint> resizeFootprints(std::uint32_t srcSize, std::uint32_t dstSize);

} // namespace krPixels
