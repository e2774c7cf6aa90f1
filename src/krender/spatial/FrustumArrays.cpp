#include "krender/spatial/private/FrustumArrays.h"

#include <krender/platform/Linear.h>

#include <algorithm>
#include <cstddef>

#if defined(__x86_64__)
#include <immintrin.h>

#include <array>
#include <cstring>
#endif

namespace krSpatial
{

namespace
{

using krLinear::PointFlt;

// The volumes of an array are of no derived class, so these calls need no virtual dispatch.
PointFlt centerOf(const BoundingSphere& sphere) { return sphere.BoundingSphere::center(); }
float radiusOf(const BoundingSphere& sphere) { return sphere.BoundingSphere::radius(); }
PointFlt minOf(const AABoundingBox& box) { return box.AABoundingBox::min(); }
PointFlt maxOf(const AABoundingBox& box) { return box.AABoundingBox::max(); }

std::uint8_t testOne(const Frustum& frustum, const BoundingSphere& sphere)
{
    const PointFlt center = centerOf(sphere);
    return frustum.sphereInFrustum(center.x, center.y, center.z, radiusOf(sphere));
}

std::uint8_t testOne(const Frustum& frustum, const AABoundingBox& box)
{
    const PointFlt min = minOf(box);
    const PointFlt max = maxOf(box);
    return frustum.boxInFrustum(min.x, min.y, min.z, max.x, max.y, max.z);
}

#if defined(__x86_64__)

/// A plane, and the corner of a box that lies farthest along its normal, as indices into (min, max) of the box.
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
[[gnu::target("avx2")]] inline void answer(std::uint8_t* visible, __m256i behind)
{
    const auto mask = static_cast<std::uint32_t>(_mm256_movemask_pd(_mm256_castsi256_pd(behind)));
    const std::uint32_t bytes = ~(mask * 0x00204081u) & 0x01010101u; // bit i goes to byte i
    std::memcpy(visible, &bytes, sizeof bytes);
}

[[gnu::target("avx2")]] inline __m128 row(const BoundingSphere& sphere)
{
    const PointFlt center = centerOf(sphere);
    return __m128{center.x, center.y, center.z, radiusOf(sphere)};
}

/// Tests four spheres, one in each lane.
[[gnu::target("avx2")]] void fourSpheres(const std::array<Frustum::Plane, 6>& planes, const BoundingSphere* s,
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

/// Tests four boxes, one in each lane.
/// @return  false when the answers do not count, because the corners of some box are out of order or give a NaN
[[gnu::target("avx2")]] bool fourBoxes(const std::array<FarPlane, 6>& planes, const AABoundingBox* b,
                                       std::uint8_t* visible)
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
    const __m256i ordered = (numbers[0] <= numbers[3]) & (numbers[1] <= numbers[4]) & (numbers[2] <= numbers[5]);
    const __m256d regular = _mm256_and_pd(_mm256_castsi256_pd(ordered), _mm256_cmp_pd(sum, sum, _CMP_ORD_Q));
    return _mm256_movemask_pd(regular) == 0xf;
}

FarPlane farPlane(const Frustum::Plane& p)
{
    return {p.a, p.b, p.c, p.d, p.a < 0.0 ? 0u : 3u, p.b < 0.0 ? 1u : 4u, p.c < 0.0 ? 2u : 5u};
}

/// Tests the leading volumes, four at a time.
/// @return  how many were tested
std::size_t testInFours(const Frustum& frustum, std::span<const BoundingSphere> spheres, std::uint8_t* visible)
{
    const std::array<Frustum::Plane, 6> planes = frustum.planes();
    std::size_t i = 0;
    for (; spheres.size() - i >= 4; i += 4)
        fourSpheres(planes, &spheres[i], &visible[i]);
    return i;
}

std::size_t testInFours(const Frustum& frustum, std::span<const AABoundingBox> boxes, std::uint8_t* visible)
{
    std::array<FarPlane, 6> planes;
    std::ranges::transform(frustum.planes(), planes.begin(), farPlane);
    std::size_t i = 0;
    for (; boxes.size() - i >= 4; i += 4)
        if (!fourBoxes(planes, &boxes[i], &visible[i])) [[unlikely]]
            for (std::size_t k = i; k < i + 4; ++k)
                visible[k] = testOne(frustum, boxes[k]);
    return i;
}

#else

template <class Volume>
std::size_t testInFours(const Frustum& /*frustum*/, std::span<const Volume> /*volumes*/, std::uint8_t* /*visible*/)
{
    return 0;
}

#endif

template <class Volume>
void testAll(const Frustum& frustum, std::span<const Volume> volumes, std::span<std::uint8_t> visible, bool wide)
{
    const std::size_t count = std::min(volumes.size(), visible.size());
    for (std::size_t i = wide ? testInFours(frustum, volumes.first(count), visible.data()) : 0; i < count; ++i)
        visible[i] = testOne(frustum, volumes[i]);
}

} // namespace

bool hasWideRegisters() noexcept
{
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

void classifySpheres(const Frustum& frustum, std::span<const BoundingSphere> spheres, std::span<std::uint8_t> visible,
                     bool wide) noexcept
{
    testAll(frustum, spheres, visible, wide);
}

void classifyBoxes(const Frustum& frustum, std::span<const AABoundingBox> boxes, std::span<std::uint8_t> visible,
                   bool wide) noexcept
{
    testAll(frustum, boxes, visible, wide);
}

} // namespace krSpatial
