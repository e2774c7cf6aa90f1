#pragma once
#include "krender/pixels/private/ResizeRuns.h"

namespace krPixels
{

/// A run with its weights in whole numbers, taken times a common denominator: sums of bytes stay exact with them. Source
/// cells that only touch the end of the footprint are left out.
struct ResizeShare : ResizeRun
{
    float firstWeight;
    float innerWeight; ///< of each cell between the first and the last
    float lastWeight;
    float total;  ///< the sum of the weights, at most twice the source's size
    bool uniform; ///< all weights are 1
};

/// The shares of all destination cells.
/// @param srcSize, dstSize  at most 2^16
[[nodiscard]] std::vector<ResizeShare> resizeShares(std::uint32_t srcSize, std::uint32_t dstSize);

} // namespace krPixels
