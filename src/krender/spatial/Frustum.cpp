#include <krender/spatial/Frustum.h>

#include "krender/spatial/private/FrustumArrays.h"

#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/IBoundingVolume.h>
#include <krender/spatial/IBounds.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

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
    for (std::array<double, 6>* coefficients : {&fA, &fB, &fC, &fD})
        coefficients->fill(0.0);
}

std::array<Frustum::Plane, 6> Frustum::planes() const noexcept
{
    std::array<Plane, 6> planes;
    for (std::size_t i = 0; i < planes.size(); ++i)
        planes[i] = {fA[i], fB[i], fC[i], fD[i]};
    return planes;
}

void Frustum::recomputePlaneEquations(const krLinear::ProjMatrix& matrix) noexcept
{
    fValid = true;
    for (std::size_t i = 0; i < kSides.size(); ++i)
    {
        const auto coefficient = [&matrix, side = kSides[i]](unsigned row)
        { return matrix(row, 3) + side.sign * matrix(row, side.column); };
        const double a = coefficient(0);
        const double b = coefficient(1);
        const double c = coefficient(2);
        const double length = std::sqrt(a * a + b * b + c * c);
        fA[i] = a / length;
        fB[i] = b / length;
        fC[i] = c / length;
        fD[i] = coefficient(3) / length;
    }
}

// All planes are evaluated before any is judged: that costs less than the branches that would spare some of them.

bool Frustum::sphereInFrustum(double x, double y, double z, double radius) const noexcept
{
    std::array<double, 6> values;
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = fA[i] * x + fB[i] * y + fC[i] * z + fD[i];
    bool behind = false;
    for (const double value : values)
        behind |= -radius >= value;
    return !behind;
}

bool Frustum::boxInFrustum(double minX, double minY, double minZ, double maxX, double maxY, double maxZ) const noexcept
{
    // Rounding is monotone, so the corner with the largest product on each axis has the largest value of all eight.
    std::array<double, 6> values;
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = std::max(fA[i] * maxX, fA[i] * minX) + std::max(fB[i] * maxY, fB[i] * minY) +
                    std::max(fC[i] * maxZ, fC[i] * minZ) + fD[i];
    // A NaN comes from an infinity or an overflow, and another corner may still be in front.
    if (std::isnan((values[0] + values[1]) + (values[2] + values[3]) + (values[4] + values[5]))) [[unlikely]]
        return hasCornerInFrontOfEach(minX, minY, minZ, maxX, maxY, maxZ);
    bool behind = false;
    for (const double value : values)
        behind |= value <= 0.0;
    return !behind;
}

bool Frustum::hasCornerInFrontOfEach(double minX, double minY, double minZ, double maxX, double maxY,
                                     double maxZ) const noexcept
{
    return std::ranges::all_of(planes(),
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

void Frustum::classifySpheres(std::span<const BoundingSphere> spheres, std::span<std::uint8_t> visible) const noexcept
{
    krSpatial::classifySpheres(*this, spheres, visible, krSpatial::hasWideRegisters());
}

void Frustum::classifyBoxes(std::span<const AABoundingBox> boxes, std::span<std::uint8_t> visible) const noexcept
{
    krSpatial::classifyBoxes(*this, boxes, visible, krSpatial::hasWideRegisters());
}
