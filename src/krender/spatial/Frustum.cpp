#include <krender/spatial/Frustum.h>

#include <krender/spatial/IBoundingVolume.h>

#include <algorithm>
#include <cmath>

namespace
{

/// A side of clip space: w plus or minus one of x, y and z.
struct Side
{
    unsigned column;
    double sign;
};

constexpr std::array kSides{Side{0, -1.0}, Side{0, 1.0}, Side{1, 1.0}, Side{1, -1.0}, Side{2, -1.0}, Side{2, 1.0}};

} // namespace

Frustum::Frustum(const Frustum& /*other*/) noexcept : IBounds(kFrustumBounds) {}

Frustum::Frustum(const krLinear::ProjMatrix& matrix) noexcept : IBounds(kFrustumBounds)
{
    recomputePlaneEquations(matrix);
}

void Frustum::setInvalid()
{
    fValid = false;
    fPlanes.fill(Plane());
}

void Frustum::recomputePlaneEquations(const krLinear::ProjMatrix& matrix) noexcept
{
    fValid = true;
    std::transform(kSides.begin(), kSides.end(), fPlanes.begin(),
                   [&matrix](Side side)
                   {
                       const auto coefficient = [&](unsigned row)
                       { return matrix(row, 3) + side.sign * matrix(row, side.column); };
                       const Plane plane{coefficient(0), coefficient(1), coefficient(2), coefficient(3)};
                       const double length = std::sqrt(plane.a * plane.a + plane.b * plane.b + plane.c * plane.c);
                       return Plane{plane.a / length, plane.b / length, plane.c / length, plane.d / length};
                   });
}

bool Frustum::sphereInFrustum(double x, double y, double z, double radius) const noexcept
{
    return std::none_of(fPlanes.begin(), fPlanes.end(),
                        [=](const Plane& p) { return -radius >= p.a * x + p.b * y + p.c * z + p.d; });
}

bool Frustum::boxInFrustum(double minX, double minY, double minZ, double maxX, double maxY, double maxZ) const noexcept
{
    return std::all_of(fPlanes.begin(), fPlanes.end(),
                       [=](const Plane& p)
                       {
                           for (const double z : {minZ, maxZ})
                               for (const double y : {minY, maxY})
                                   for (const double x : {minX, maxX})
                                       if (p.a * x + p.b * y + p.c * z + p.d > 0.0)
                                           return true;
                           return false;
                       });
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
