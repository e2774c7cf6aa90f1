#include "ResizeShares.h"

#include <algorithm>
#include <numeric>

namespace krPixels
{

namespace
{

ResizeShare makeShare(std::int64_t low, std::int64_t high, std::int64_t unit) noexcept
{
    low = std::max<std::int64_t>(low, 0);
    const std::int64_t first = low / unit;
    const std::int64_t last = (high - 1) / unit;
    std::int64_t firstWeight = (first + 1) * unit - low;
    std::int64_t innerWeight = unit;
    std::int64_t lastWeight = high - last * unit;
    std::int64_t total = high - low;
    if (first == last)
    {
        firstWeight = total = 1;
        lastWeight = 0;
    }
    else if (firstWeight == unit && lastWeight == unit)
    {
        firstWeight = innerWeight = lastWeight = 1;
        total /= unit;
    }
    return {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last), static_cast<float>(firstWeight),
            static_cast<float>(innerWeight),   static_cast<float>(lastWeight),   1.0f / static_cast<float>(total),
            static_cast<double>(total)};
}

} // namespace

std::vector<ResizeShare> resizeShares(std::uint32_t srcSize, std::uint32_t dstSize)
{
    // Cell i reaches from (i - 1/2) to (i + 1/2) times srcSize / dstSize; in units of 1 / (2 * dstSize), reduced, the ends
    // are whole.
    const std::int64_t divisor = std::gcd(std::int64_t{srcSize}, 2 * std::int64_t{dstSize});
    const std::int64_t half = srcSize / divisor;
    const std::int64_t unit = 2 * std::int64_t{dstSize} / divisor;
    std::vector<ResizeShare> shares(dstSize);
    for (std::uint32_t i = 0; i < dstSize; ++i)
        shares[i] = makeShare((2 * std::int64_t{i} - 1) * half, (2 * std::int64_t{i} + 1) * half, unit);
    return shares;
}

} // namespace krPixels
