#include "FixedFloat.h"

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
    for (std::size_t i = 0; i < kBlock; ++i)
    {
        const auto whole = static_cast<std::int32_t>(src[i]);
        const float fraction = src[i] - static_cast<float>(whole); // exact; it has the sign of the component
        const int up = (fraction >= 0.5f ? 1 : 0) + (fraction > -0.5f && whole < 0 ? 1 : 0);
        dst[i] = static_cast<unsigned char>(-(whole + up));
    }
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
