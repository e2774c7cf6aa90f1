#include <krender/spatial/Frustum.h>

#include <algorithm>

namespace
{

/// A side of clip space: w plus or minus one of x, y and z.
struct Side
{
    unsigned column;
    double sign;
};

constexpr std::array kSides{Side{0, -1.0}, Side{0, 1.0}, Side{1, 1.0}, Side{1, -1.0}, Side{2, -1.0}, Side{2, 1.0}};

Frustum::Plane planeOf(const krLinear::ProjMatrix& matrix, Side side)
{
    const auto coefficient = [&](unsigned row) { return matrix(row, 3) + side.sign * matrix(row, side.column); };
    const Frustum::Plane plane{coefficient(0), coefficient(1), coefficient(2), coefficient(3)};
    const double length = std::sqrt(plane.a * plane.a + plane.b * plane.b + plane.c * plane.c);
    return {plane.a / length, plane.b / length, plane.c / length, plane.d / length};
}

} // namespace

Frustum::Frustum(const Frustum& /*other*/) noexcept : IBounds(kFrustumBounds) {}

Frustum::Frustum(const krLinear::ProjMatrix& matrix) noexcept : IBounds(kFrustumBounds)
{
    recomputePlaneEquations(matrix);
}

void Frustum::setInvalid()
{
    fValid = false;
    fPlanes.fill(PlanePair());
}

std::array<Frustum::Plane, 6> Frustum::planes() const noexcept
{
    std::array<Plane, 6> planes;
    for (unsigned i = 0; i < planes.size(); ++i)
    {
        const PlanePair& pair = fPlanes[i / 2];
        planes[i] = {pair.a[i % 2], pair.b[i % 2], pair.c[i % 2], pair.d[i % 2]};
    }
    return planes;
}

void Frustum::recomputePlaneEquations(const krLinear::ProjMatrix& matrix) noexcept
{
    fValid = true;
    for (std::size_t i = 0; i < fPlanes.size(); ++i)
    {
        const Plane first = planeOf(matrix, kSides[2 * i]);
        const Plane second = planeOf(matrix, kSides[2 * i + 1]);
        fPlanes[i] = PlanePair{Pair{first.a, second.a}, Pair{first.b, second.b}, Pair{first.c, second.c},
                               Pair{first.d, second.d}};
    }
}

bool Frustum::classify(IntersectType type, const IBoundingVolume& volume) const
{
    if (type != Intersect)
        return false;
    if (volume.boundsType() == kBoxBounds)
    {
        const krLinear::PointFlt min = volume.min();
        const krLinear::PointFlt max = volume.max();
        return boxInFrustum(min.x, min.y, min.z, max.x, max.y, max.z);
    }
    if (volume.boundsType() == kSphereBounds)
    {
        const krLinear::PointFlt center = volume.center();
        return sphereInFrustum(center.x, center.y, center.z, volume.radius());
    }
    return false;
}

bool Frustum::anyCornerInFront(double minX, double minY, double minZ, double maxX, double maxY,
                               double maxZ) const noexcept
{
    const std::array<Plane, 6> all = planes();
    return std::all_of(all.begin(), all.end(),
                       [=](const Plane& p)
                       {
                           for (const double x : {minX, maxX})
                               for (const double y : {minY, maxY})
                                   for (const double z : {minZ, maxZ})
                                       if (p.a * x + p.b * y + p.c * z + p.d > 0.0)
                                           return true;
                           return false;
                       });
}
