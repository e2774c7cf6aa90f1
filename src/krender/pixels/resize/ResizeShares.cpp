#include "krender/pixels/private/ResizeShares.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace krPixels
{

namespace
{

/// Sets the weights of a run's cells, whose footprint is [low, high].
/// @param unit  the width of a cell
void setWeights(ResizeShare& share, std::int64_t low, std::int64_t high, std::int64_t unit) noexcept
{
    std::int64_t firstWeight = (share.first + 1) * unit - low;
    std::int64_t innerWeight = unit;
    std::int64_t lastWeight = high - share.last * unit;
    std::int64_t total = high - low;
    share.uniform = share.first == share.last || (firstWeight == unit && lastWeight == unit);
    if (share.uniform)
    {
        firstWeight = innerWeight = lastWeight = 1;
        total = share.last - share.first + 1;
    }
    share.firstWeight = static_cast<float>(firstWeight);
    share.innerWeight = static_cast<float>(innerWeight);
    share.lastWeight = static_cast<float>(lastWeight);
    share.total = static_cast<float>(total);
}

} // namespace

std::vector<ResizeShare> resizeShares(std::uint32_t srcSize, std::uint32_t dstSize)
{
    // Footprint i reaches from (i - 1/2) to (i + 1/2) times srcSize / dstSize. In units of divisor / (2 * dstSize) both ends
    // are whole numbers.
    const std::int64_t divisor = std::gcd(std::int64_t{srcSize}, 2 * std::int64_t{dstSize});
    const std::int64_t half = srcSize / divisor;
    const std::int64_t unit = 2 * std::int64_t{dstSize} / divisor;
    std::vector<ResizeShare> shares;
    for (std::uint32_t i = 0; i < dstSize; ++i)
    {
        const std::int64_t low = std::max<std::int64_t>((2 * std::int64_t{i} - 1) * half, 0);
        const std::int64_t high = (2 * std::int64_t{i} + 1) * half;
        // The divisor divides 2 * dstSize, so the unit is never 0.
        const auto first =
            static_cast<std::uint32_t>(low / unit); // NOLINT(clang-analyzer-core.UndefinedBinaryOperatorResult)
        const auto last = static_cast<std::uint32_t>((high - 1) / unit);
        if (!shares.empty() && extendRun(shares.back(), first, last))
            continue;
        shares.push_back({{first, last, i, 1}, 0.0f, 0.0f, 0.0f, 0.0f, false});
        setWeights(shares.back(), low, high, unit);
    }
    return shares;
}

} // namespace krPixels
