#pragma once
#include <cmath> // the plain square root
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace krPixels
{

/// The four components of a pixel in one of the compilers' vector types, whose arithmetic works on all at once.
using Float4 = float __attribute__((vector_size(16)));
using Int4 = std::int32_t __attribute__((vector_size(16)));
using UInt4 = std::uint32_t __attribute__((vector_size(16)));
using Double2 = double __attribute__((vector_size(16)));

/// Four doubles in two halves, each of which fits a register of any processor.
struct Double4
{
    Double4& operator+=(const Double4& other) noexcept
    {
        rg += other.rg;
        ba += other.ba;
        return *this;
    }
    Double4& operator+=(double summand) noexcept
    {
        rg += summand;
        ba += summand;
        return *this;
    }
    friend Double4 operator*(const Double4& x, double factor) noexcept { return {x.rg * factor, x.ba * factor}; }

    Double2 rg;
    Double2 ba;
};

template <class Lanes, class Component>
[[nodiscard]] inline Lanes loadLanes(const Component* components) noexcept
{
    Lanes lanes;
    std::memcpy(&lanes, components, sizeof lanes);
    return lanes;
}

template <class Lanes, class Component>
inline void storeLanes(const Lanes& lanes, Component* components) noexcept
{
    std::memcpy(components, &lanes, sizeof lanes);
}

// Intrinsics, as the compilers make scalar code of conversions between lanes of different widths.
#if defined(__SSE2__)

[[nodiscard]] inline Float4 squareRoots(Float4 x) noexcept { return _mm_sqrt_ps(x); }

/// Four floats as doubles.
[[nodiscard]] inline Double4 widened(Float4 x) noexcept { return {_mm_cvtps_pd(x), _mm_cvtps_pd(_mm_movehl_ps(x, x))}; }

/// Four doubles rounded to floats.
[[nodiscard]] inline Float4 rounded(const Double4& x) noexcept
{
    return _mm_movelh_ps(_mm_cvtpd_ps(x.rg), _mm_cvtpd_ps(x.ba));
}

#else

[[nodiscard]] inline Float4 squareRoots(Float4 x) noexcept
{
    return Float4{std::sqrt(x[0]), std::sqrt(x[1]), std::sqrt(x[2]), std::sqrt(x[3])};
}

[[nodiscard]] inline Double4 widened(Float4 x) noexcept { return {Double2{x[0], x[1]}, Double2{x[2], x[3]}}; }

[[nodiscard]] inline Float4 rounded(const Double4& x) noexcept
{
    const auto narrow = [](double y) { return static_cast<float>(y); };
    return Float4{narrow(x.rg[0]), narrow(x.rg[1]), narrow(x.ba[0]), narrow(x.ba[1])};
}

#endif

} // namespace krPixels
