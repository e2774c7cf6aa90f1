#include <krender/spatial/Frustum.h>

#include <algorithm>
#include <cstring>

namespace
{

krLinear::PointFlt centerOf(const BoundingSphere& sphere) { return sphere.BoundingSphere::center(); }
float radiusOf(const BoundingSphere& sphere) { return sphere.BoundingSphere::radius(); }
krLinear::PointFlt minOf(const AABoundingBox& box) { return box.AABoundingBox::min(); }
krLinear::PointFlt maxOf(const AABoundingBox& box) { return box.AABoundingBox::max(); }

#if defined(__x86_64__)
#define KRENDER_AVX2 __attribute__((target("avx2")))

using Planes = std::array<Frustum::Plane, 6>;

// Four volumes are tested side by side: a number of each stands in one lane.
using FourFlt = float __attribute__((vector_size(4 * sizeof(float))));
using Four = double __attribute__((vector_size(4 * sizeof(double))));
using FourMasks = decltype(Four() < Four());
using FourBytes = std::int8_t __attribute__((vector_size(4)));

struct FourPoints
{
    Four x;
    Four y;
    Four z;
};

KRENDER_AVX2 inline FourPoints sideBySide(const krLinear::PointFlt& p0, const krLinear::PointFlt& p1,
                                          const krLinear::PointFlt& p2, const krLinear::PointFlt& p3)
{
    return {__builtin_convertvector(FourFlt{p0.x, p1.x, p2.x, p3.x}, Four),
            __builtin_convertvector(FourFlt{p0.y, p1.y, p2.y, p3.y}, Four),
            __builtin_convertvector(FourFlt{p0.z, p1.z, p2.z, p3.z}, Four)};
}

/// Writes 1 where the mask is 0, and 0 where all its bits are set.
KRENDER_AVX2 inline void answer(std::uint8_t* visible, const FourMasks& behind)
{
    const FourBytes answers = __builtin_convertvector(behind, FourBytes) + 1;
    std::memcpy(visible, &answers, sizeof answers);
}

KRENDER_AVX2 void fourSpheres(const Planes& planes, const BoundingSphere* s, std::uint8_t* visible)
{
    const FourPoints center = sideBySide(centerOf(s[0]), centerOf(s[1]), centerOf(s[2]), centerOf(s[3]));
    const Four radius =
        __builtin_convertvector(FourFlt{radiusOf(s[0]), radiusOf(s[1]), radiusOf(s[2]), radiusOf(s[3])}, Four);
    FourMasks behind{};
    for (const Frustum::Plane& p : planes)
        behind |= -radius >= p.a * center.x + p.b * center.y + p.c * center.z + p.d;
    answer(visible, behind);
}

/// Answers for boxes whose corners are in order and whose values are no NaN; false if some box is none of these.
KRENDER_AVX2 bool fourBoxes(const Planes& planes, const AABoundingBox* b, std::uint8_t* visible)
{
    const FourPoints min = sideBySide(minOf(b[0]), minOf(b[1]), minOf(b[2]), minOf(b[3]));
    const FourPoints max = sideBySide(maxOf(b[0]), maxOf(b[1]), maxOf(b[2]), maxOf(b[3]));
    FourMasks ordered = (min.x <= max.x) & (min.y <= max.y) & (min.z <= max.z);
    FourMasks behind{};
    Four sum{};
    for (const Frustum::Plane& p : planes)
    {
        // The corner farthest along the plane's normal.
        const Four value = p.a * (p.a < 0.0 ? min.x : max.x) + p.b * (p.b < 0.0 ? min.y : max.y) +
                           p.c * (p.c < 0.0 ? min.z : max.z) + p.d;
        behind |= value <= 0.0;
        sum += value;
    }
    ordered &= sum == sum;
    answer(visible, behind);
    return (ordered[0] & ordered[1] & ordered[2] & ordered[3]) != 0;
}
#endif

} // namespace

void Frustum::classifySpheres(std::span<const BoundingSphere> spheres, std::span<std::uint8_t> visible) const noexcept
{
    const std::size_t count = std::min(spheres.size(), visible.size());
    std::size_t i = 0;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
    {
        const Planes all = planes();
        for (; count - i >= 4; i += 4)
            fourSpheres(all, &spheres[i], &visible[i]);
    }
#endif
    for (; i < count; ++i)
    {
        const krLinear::PointFlt center = centerOf(spheres[i]);
        visible[i] = sphereInFrustum(center.x, center.y, center.z, radiusOf(spheres[i]));
    }
}

void Frustum::classifyBoxes(std::span<const AABoundingBox> boxes, std::span<std::uint8_t> visible) const noexcept
{
    const std::size_t count = std::min(boxes.size(), visible.size());
    const auto one = [&](std::size_t i)
    {
        const krLinear::PointFlt min = minOf(boxes[i]);
        const krLinear::PointFlt max = maxOf(boxes[i]);
        visible[i] = boxInFrustum(min.x, min.y, min.z, max.x, max.y, max.z);
    };
    std::size_t i = 0;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
    {
        const Planes all = planes();
        for (; count - i >= 4; i += 4)
            if (!fourBoxes(all, &boxes[i], &visible[i])) [[unlikely]]
                for (std::size_t k = i; k < i + 4; ++k)
                    one(k);
    }
#endif
    for (; i < count; ++i)
        one(i);
}
