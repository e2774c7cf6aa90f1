#pragma once
#include <cstdint>
#include <vector>

namespace krPixels
{

/// A footprint in whole numbers, its weights taken times a common denominator; sums of bytes stay exact with them. Cells
/// that only touch the footprint's end are left out.
struct ResizeShare
{
    std::uint32_t first;
    std::uint32_t last;
    float firstWeight;
    float innerWeight; ///< of each cell between the first and the last
    float lastWeight;  ///< 0 when the first cell is the only one
    float inverse;     ///< 1 / total
    double total;      ///< the sum of the weights, at most twice the source's size
};

/// The shares of all destination cells.
/// @param srcSize, dstSize  at most 2^16
[[nodiscard]] std::vector<ResizeShare> resizeShares(std::uint32_t srcSize, std::uint32_t dstSize);

} // namespace krPixels
