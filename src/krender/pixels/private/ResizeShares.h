#pragma once
#include "krender/pixels/private/ResizeRuns.h"

#include <cstdint>
#include <vector>

namespace krPixels
{

/// A run with its weights multiplied by their common denominator: with such whole numbers, sums of bytes stay exact. A
/// source cell that only touches the end of the footprint, with a weight of 0, is left out.
struct ResizeShare : ResizeRun
{
    float firstWeight;
    float innerWeight; ///< of every cell between the first and the last
    float lastWeight;
    float total;  ///< the sum of the weights, at most twice the source's size
    bool uniform; ///< all weights are 1
};

/// The shares of all destination cells.
/// @param srcSize, dstSize  at most 2^16
[[nodiscard]] std::vector<ResizeShare> resizeShares(std::uint32_t srcSize, std::uint32_t dstSize);

} // namespace krPixels
