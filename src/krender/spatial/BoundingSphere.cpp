#include <krender/spatial/BoundingSphere.h>

#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/IBoundingPlanes.h>
#include <krender/spatial/IBounds.h>

#include <algorithm>
#include <cmath>

using krLinear::Point;
using krLinear::PointFlt;

namespace
{

float squaredDistance(const PointFlt& a, const PointFlt& b)
{
    const PointFlt d(a.x - b.x, a.y - b.y, a.z - b.z);
    return d.x * d.x + d.y * d.y + d.z * d.z;
}

} // namespace

BoundingSphere::BoundingSphere(const IBoundingPlanes& planes) : BoundingSphere()
{
    if (planes.isValid())
        set(planes.center(), planes.radius());
}

BoundingSphere::BoundingSphere(const GeometryDataIndex& /*indices*/) noexcept : BoundingSphere() {}

bool BoundingSphere::isValid() const { return fRadius > 0.0f; }

void BoundingSphere::setInvalid() { fRadius = -1.0f; }

void BoundingSphere::transform(krLinear::AffineMatrix& matrix) { *this = transformed(matrix); }

BoundingSphere BoundingSphere::transformed(const krLinear::AffineMatrix& matrix) const
{
    const Point center = matrix.preMult(Point(fCenter));
    const auto squaredLength = [&matrix](unsigned row)
    { return matrix(row, 0) * matrix(row, 0) + matrix(row, 1) * matrix(row, 1) + matrix(row, 2) * matrix(row, 2); };
    const double scale = std::sqrt(std::max({squaredLength(0), squaredLength(1), squaredLength(2)}));
    return {PointFlt(center.x, center.y, center.z), static_cast<float>(fRadius * scale)};
}

void BoundingSphere::addPoint(const PointFlt& point)
{
    const float squared = squaredDistance(point, fCenter);
    if (!(squared > fRadius * fRadius))
        return;
    const float distance = std::sqrt(squared);
    const float inverse = 1.0f / distance;
    const float keep = fRadius * inverse;
    const float pull = (distance - fRadius) * inverse;
    fCenter = PointFlt(fCenter.x * keep + point.x * pull, fCenter.y * keep + point.y * pull,
                       fCenter.z * keep + point.z * pull);
    fRadius = (fRadius + distance) * 0.5f;
}

void BoundingSphere::addPoints(const std::vector<PointFlt>& points)
{
    for (const PointFlt& point : points)
        addPoint(point);
}

PointFlt BoundingSphere::min() const { return {fCenter.x - fRadius, fCenter.y - fRadius, fCenter.z - fRadius}; }

PointFlt BoundingSphere::max() const { return {fCenter.x + fRadius, fCenter.y + fRadius, fCenter.z + fRadius}; }

void BoundingSphere::set(const PointFlt& center, float radius) noexcept
{
    fCenter = center;
    fRadius = radius;
}

void BoundingSphere::set(const GeometryDataIndex& /*indices*/) noexcept {}

BoundingSphere BoundingSphere::operator+(const IBoundingPlanes& other) const
{
    BoundingSphere sum(*this);
    sum += other;
    return sum;
}

BoundingSphere& BoundingSphere::operator+=(const IBoundingPlanes& other)
{
    const PointFlt center = other.center();
    fCenter = PointFlt((fCenter.x + center.x) * 0.5f, (fCenter.y + center.y) * 0.5f, (fCenter.z + center.z) * 0.5f);
    fRadius += other.radius();
    return *this;
}

bool BoundingSphere::classify(IntersectType type, const PointFlt& point) const noexcept
{
    const float distance = squaredDistance(point, fCenter);
    const float radius = fRadius * fRadius;
    switch (type)
    {
    case Outside:
        return distance > radius;
    case Inside:
        return radius > distance;
    case Intersect:
        return std::abs(distance - radius) <= 1e-5f;
    }
    return false;
}

bool BoundingSphere::classify(IntersectType type, const AABoundingBox& box) const { return box.classify(type, *this); }

bool BoundingSphere::classify(IntersectType type, const BoundingSphere& sphere) const
{
    const double distance = krLinear::distance(fCenter, sphere.center());
    const bool contains = fRadius >= sphere.radius() + distance;
    const bool meets = fRadius + sphere.radius() >= distance;
    switch (type)
    {
    case Outside:
        return !contains && !meets;
    case Inside:
        return contains;
    case Intersect:
        return meets;
    }
    return false;
}

bool BoundingSphere::classify(IntersectType /*type*/, const Frustum& /*frustum*/) const noexcept { return false; }
