#include "krender/pixels/private/FixedFloat.h"

#include "krender/pixels/private/Lanes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace krPixels
{

namespace
{

/// Deliberate: a threshold and not a scale, as 1 negated fills the byte. The sum is taken in double, where values just
/// under 0.5 do not round up to 1. NaN gives 0, and so do values beyond 64 bits, whose low bits are 0.
unsigned char threshold(float component) noexcept
{
    const double sum = static_cast<double>(component) + 0.5;
    return std::fabs(sum) < 0x1p63 ? static_cast<unsigned char>(-static_cast<std::int64_t>(sum)) : 0;
}

/// Small enough for the processor to fetch the next block while it computes this one.
constexpr std::size_t kBlock = 64;

/// Whether the magnitudes of a block's components are below 2^31.
bool fitIntegers(const float* components) noexcept
{
    constexpr auto kTooLarge = std::bit_cast<std::uint32_t>(0x1p31f);
    std::uint32_t signs = 0;
    for (std::size_t i = 0; i < kBlock; ++i)
        signs |= (std::bit_cast<std::uint32_t>(components[i]) & 0x7FFFFFFF) + (0x80000000 - kTooLarge);
    return (signs >> 31) == 0;
}

/// What threshold gives, in single precision, for a block of components that fit integers.
void thresholdBlock(const float* src, unsigned char* __restrict dst) noexcept
{
    std::int32_t bytes[kBlock];
    for (std::size_t i = 0; i < kBlock; i += 4)
    {
        const auto component = loadLanes<Float4>(src + i);
        const auto whole = __builtin_convertvector(component, Int4);
        const Float4 fraction = component - __builtin_convertvector(whole, Float4); // exact, with the component's sign
        // A comparison that holds is -1. Where adding one half reaches the next whole number, this is minus that number.
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
    // Deliberate: 0 and 255 do not give 0 and 1. For each of the 256 bytes, these two products give what a division by 255
    // gives: kHigh has so few bits that its product is exact, and kLow is the rest of 1 / 255.
    constexpr float kHigh = 0x1.01p-8f;
    constexpr auto kLow = static_cast<float>(1.0 / 255.0 - kHigh);
    for (std::size_t i = 0; i < count; ++i)
    {
        const float middle = static_cast<float>(src[i]) + 0.5f;
        dst[i] = middle * kHigh + middle * kLow;
    }
}

} // namespace krPixels
