#include "krender/pixels/private/FixedFloat.h"

#include "krender/pixels/private/Lanes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace krPixels
{

namespace
{

/// The masks that hosts paint in float are 0 or 1; negated, the 1 fills the whole byte. In double the sum keeps values just
/// under 0.5 apart from 0.5. What is beyond 64 bits has low bits of 0, as not-a-number shall have.
unsigned char threshold(float component) noexcept
{
    const double sum = static_cast<double>(component) + 0.5;
    return std::fabs(sum) < 0x1p63 ? static_cast<unsigned char>(-static_cast<std::int64_t>(sum)) : 0;
}

/// Few enough that the next block's memory is fetched while this one is computed.
constexpr std::size_t kBlock = 64;

/// Whether the components of a block are of a magnitude below 2^31.
bool fitIntegers(const float* components) noexcept
{
    constexpr auto kTooLarge = std::bit_cast<std::uint32_t>(0x1p31f);
    std::uint32_t signs = 0;
    for (std::size_t i = 0; i < kBlock; ++i)
        signs |= (std::bit_cast<std::uint32_t>(components[i]) & 0x7FFFFFFF) + (0x80000000 - kTooLarge);
    return (signs >> 31) == 0;
}

/// The same as threshold in single precision, for a block of components that fit integers.
void thresholdBlock(const float* src, unsigned char* __restrict dst) noexcept
{
    std::int32_t bytes[kBlock];
    for (std::size_t i = 0; i < kBlock; i += 4)
    {
        const auto component = loadLanes<Float4>(src + i);
        const auto whole = __builtin_convertvector(component, Int4);
        const Float4 fraction = component - __builtin_convertvector(whole, Float4); // exact, signed as the component
        // Comparisons that hold are -1: this is minus the next whole number where one half more reaches it.
        storeLanes((fraction >= 0.5f) + ((fraction > -0.5f) & (whole < 0)) - whole, bytes + i);
    }
    for (std::size_t i = 0; i < kBlock; ++i)
        dst[i] = static_cast<unsigned char>(bytes[i]);
}

} // namespace

void convert(const float* src, std::size_t count, unsigned char* dst) noexcept
{
    for (; count >= kBlock; count -= kBlock, src += kBlock, dst += kBlock)
        if (fitIntegers(src))
            thresholdBlock(src, dst);
        else
            std::transform(src, src + kBlock, dst, threshold);
    std::transform(src, src + count, dst, threshold);
}

void convert(const unsigned char* src, std::size_t count, float* dst) noexcept
{
    // A byte stands for the middle of its interval, so that neither 0 nor 255 comes out as a value that a mask would
    // take for exactly 0 or 1. The first factor has so few bits that its product is exact; the two together give what a
    // division by 255 gives for each of the 256 values.
    constexpr float kHigh = 0x1.01p-8f;
    constexpr auto kLow = static_cast<float>(1.0 / 255.0 - kHigh);
    for (std::size_t i = 0; i < count; ++i)
    {
        const float middle = static_cast<float>(src[i]) + 0.5f;
        dst[i] = middle * kHigh + middle * kLow;
    }
}

} // namespace krPixels
