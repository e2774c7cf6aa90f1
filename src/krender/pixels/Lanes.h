#pragma once
#include <cmath>
#include <cstdint>
#include <cstring>

namespace krPixels
{

/// The four components of a pixel side by side, as the compilers' vector types: arithmetic works on all at once.
using Float4 = float __attribute__((vector_size(16)));
using Int4 = std::int32_t __attribute__((vector_size(16)));
using UInt4 = std::uint32_t __attribute__((vector_size(16)));
using Double2 = double __attribute__((vector_size(16)));
using Float2 = float __attribute__((vector_size(8)));
using Int2 = std::int32_t __attribute__((vector_size(8)));

/// Four doubles, in the two halves that registers hold everywhere.
struct Double4
{
    Double4& operator+=(const Double4& other) noexcept
    {
        rg += other.rg;
        ba += other.ba;
        return *this;
    }
    friend Double4 operator*(const Double4& x, double factor) noexcept { return {x.rg * factor, x.ba * factor}; }

    Double2 rg;
    Double2 ba;
};

template <typename Lanes, typename Component>
[[nodiscard]] inline Lanes loadLanes(const Component* components) noexcept
{
    Lanes lanes;
    std::memcpy(&lanes, components, sizeof lanes);
    return lanes;
}

template <typename Lanes, typename Component>
inline void storeLanes(const Lanes& lanes, Component* components) noexcept
{
    std::memcpy(components, &lanes, sizeof lanes);
}

[[nodiscard]] inline Float4 squareRoots(const Float4& x) noexcept
{
#if defined(__SSE__)
    return __builtin_ia32_sqrtps(x);
#else
    return Float4{std::sqrt(x[0]), std::sqrt(x[1]), std::sqrt(x[2]), std::sqrt(x[3])};
#endif
}

/// Four floats as doubles.
[[nodiscard]] inline Double4 loadWide(const float* components) noexcept
{
    return {__builtin_convertvector(loadLanes<Float2>(components), Double2),
            __builtin_convertvector(loadLanes<Float2>(components + 2), Double2)};
}

} // namespace krPixels
