#include <krender/spatial/Frustum.h>

#include <algorithm>
#include <cstring>
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace
{

using krLinear::PointFlt;

PointFlt centerOf(const BoundingSphere& sphere) { return sphere.BoundingSphere::center(); }
float radiusOf(const BoundingSphere& sphere) { return sphere.BoundingSphere::radius(); }
PointFlt minOf(const AABoundingBox& box) { return box.AABoundingBox::min(); }
PointFlt maxOf(const AABoundingBox& box) { return box.AABoundingBox::max(); }

#if defined(__x86_64__)

// Four volumes stand side by side, one in each lane of a vector.
#define KRENDER_AVX2 __attribute__((target("avx2")))

/// A plane with the place of the corner that lies farthest along its normal: which of a box's six numbers to take.
struct FarPlane
{
    double a, b, c, d;
    unsigned x, y, z;
};

/// Asks for the volumes that come up a few steps later: the tests are faster than memory.
template <class Volume>
inline void prefetch(const Volume* volumes)
{
    constexpr std::size_t kAhead = 2048;
    for (std::size_t line = 0; line < 4 * sizeof(Volume); line += 64)
        __builtin_prefetch(reinterpret_cast<const char*>(volumes) + kAhead + line);
}

/// Writes 1 for each lane whose mask is 0, and 0 for the others.
KRENDER_AVX2 inline void answer(std::uint8_t* visible, __m256i behind)
{
    const auto mask = static_cast<std::uint32_t>(_mm256_movemask_pd(_mm256_castsi256_pd(behind)));
    const std::uint32_t bytes = ~(mask * 0x00204081u) & 0x01010101u; // bit i goes to byte i
    std::memcpy(visible, &bytes, sizeof bytes);
}

KRENDER_AVX2 inline __m128 row(const BoundingSphere& sphere)
{
    const PointFlt center = centerOf(sphere);
    return __m128{center.x, center.y, center.z, radiusOf(sphere)};
}

KRENDER_AVX2 void fourSpheres(const std::array<Frustum::Plane, 6>& planes, const BoundingSphere* s,
                              std::uint8_t* visible)
{
    prefetch(s);
    __m128 rows[4] = {row(s[0]), row(s[1]), row(s[2]), row(s[3])};
    _MM_TRANSPOSE4_PS(rows[0], rows[1], rows[2], rows[3]);
    const __m256d x = _mm256_cvtps_pd(rows[0]);
    const __m256d y = _mm256_cvtps_pd(rows[1]);
    const __m256d z = _mm256_cvtps_pd(rows[2]);
    const __m256d radius = _mm256_cvtps_pd(rows[3]);
    __m256i behind{};
    for (const Frustum::Plane& p : planes)
        behind |= -radius >= p.a * x + p.b * y + p.c * z + p.d;
    answer(visible, behind);
}

/// Answers for boxes whose corners are in order and give numbers; false if one of them is not so.
KRENDER_AVX2 bool fourBoxes(const std::array<FarPlane, 6>& planes, const AABoundingBox* b, std::uint8_t* visible)
{
    prefetch(b);
    __m128 low[4];  // min.x, min.y, min.z, max.x of each box
    __m128 high[4]; // min.z, max.x, max.y, max.z
    for (unsigned k = 0; k < 4; ++k)
    {
        const PointFlt min = minOf(b[k]);
        const PointFlt max = maxOf(b[k]);
        low[k] = __m128{min.x, min.y, min.z, max.x};
        high[k] = __m128{min.z, max.x, max.y, max.z};
    }
    _MM_TRANSPOSE4_PS(low[0], low[1], low[2], low[3]);
    _MM_TRANSPOSE4_PS(high[0], high[1], high[2], high[3]);
    const __m256d numbers[6] = {_mm256_cvtps_pd(low[0]), _mm256_cvtps_pd(low[1]),  _mm256_cvtps_pd(low[2]),
                                _mm256_cvtps_pd(low[3]), _mm256_cvtps_pd(high[2]), _mm256_cvtps_pd(high[3])};

    __m256i behind{};
    __m256d sum{};
    for (const FarPlane& p : planes)
    {
        const __m256d value = p.a * numbers[p.x] + p.b * numbers[p.y] + p.c * numbers[p.z] + p.d;
        behind |= value <= 0.0;
        sum += value;
    }
    answer(visible, behind);
    const __m256i regular =
        (numbers[0] <= numbers[3]) & (numbers[1] <= numbers[4]) & (numbers[2] <= numbers[5]) & (sum == sum);
    return _mm256_movemask_pd(_mm256_castsi256_pd(regular)) == 0xf;
}

FarPlane farPlane(const Frustum::Plane& p)
{
    return {p.a, p.b, p.c, p.d, p.a < 0.0 ? 0u : 3u, p.b < 0.0 ? 1u : 4u, p.c < 0.0 ? 2u : 5u};
}

#endif

} // namespace

void Frustum::classifySpheres(std::span<const BoundingSphere> spheres, std::span<std::uint8_t> visible) const noexcept
{
    const std::size_t count = std::min(spheres.size(), visible.size());
    std::size_t i = 0;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
        for (const std::array<Plane, 6> all = planes(); count - i >= 4; i += 4)
            fourSpheres(all, &spheres[i], &visible[i]);
#endif
    for (; i < count; ++i)
    {
        const PointFlt center = centerOf(spheres[i]);
        visible[i] = sphereInFrustum(center.x, center.y, center.z, radiusOf(spheres[i]));
    }
}

void Frustum::classifyBoxes(std::span<const AABoundingBox> boxes, std::span<std::uint8_t> visible) const noexcept
{
    const std::size_t count = std::min(boxes.size(), visible.size());
    const auto classifyOne = [&](std::size_t i)
    {
        const PointFlt min = minOf(boxes[i]);
        const PointFlt max = maxOf(boxes[i]);
        visible[i] = boxInFrustum(min.x, min.y, min.z, max.x, max.y, max.z);
    };
    std::size_t i = 0;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
    {
        std::array<FarPlane, 6> farPlanes;
        std::ranges::transform(planes(), farPlanes.begin(), farPlane);
        for (; count - i >= 4; i += 4)
            if (!fourBoxes(farPlanes, &boxes[i], &visible[i])) [[unlikely]]
                for (std::size_t k = i; k < i + 4; ++k)
                    classifyOne(k);
    }
#endif
    for (; i < count; ++i)
        classifyOne(i);
}
