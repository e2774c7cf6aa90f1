#include "FixedFloat.h"

#include <cmath>
#include <cstdint>

namespace krPixels
{

void convert(const float* src, std::size_t count, unsigned char* dst) noexcept
{
    for (std::size_t i = 0; i < count; ++i)
    {
        // The masks that hosts paint in float are 0 or 1; negated, the 1 fills the whole byte. In double the sum is exact
        // enough to keep the value just under 0.5 below 1. What no integer holds has low bits of 0.
        const double sum = static_cast<double>(src[i]) + 0.5;
        const double held = std::fabs(sum) < 2147483648.0 ? sum : 0.0;
        dst[i] = static_cast<unsigned char>(-static_cast<std::int32_t>(held));
    }
}

void convert(const unsigned char* src, std::size_t count, float* dst) noexcept
{
    // A byte stands for the middle of its interval, so that neither 0 nor 255 comes out as a value that a mask would
    // take for exactly 0 or 1.
    for (std::size_t i = 0; i < count; ++i)
        dst[i] = (static_cast<float>(src[i]) + 0.5f) / 255.0f;
}

} // namespace krPixels
