#include <krender/spatial/AABoundingBox.h>

#include <krender/platform/Linear.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/IBoundingPlanes.h>
#include <krender/spatial/IBounds.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <ranges>

using krLinear::PointFlt;

namespace
{

constexpr float squared(float value) { return value * value; }

using Lanes = float __attribute__((vector_size(4 * sizeof(float))));

constexpr float PointFlt::*kAxes[] = {&PointFlt::x, &PointFlt::y, &PointFlt::z};
static_assert(sizeof(PointFlt) == 3 * sizeof(float));

/// Gives a bound of 0 the sign that point by point growth leaves: that of the first 0 or -0 met.
void settleZero(float& bound, float oldBound, const std::vector<PointFlt>& points, float PointFlt::*axis)
{
    if (bound != 0.0f)
        return;
    bound = oldBound == 0.0f
                ? oldBound
                : (*std::ranges::find_if(points, [axis](const PointFlt& p) { return p.*axis == 0.0f; })).*axis;
}

constexpr bool between(float min, float value, float max) { return min <= value && value <= max; }

// A NaN moves no bound.
constexpr void lower(float& min, float value) { min = min > value ? value : min; }
constexpr void raise(float& max, float value) { max = value > max ? value : max; }

/// Replaces the corners of a box by those of the box around the mapped box.
void mapBounds(PointFlt& min, PointFlt& max, const krLinear::AffineMatrix& matrix)
{
    const double oldMin[] = {min.x, min.y, min.z};
    const double oldMax[] = {max.x, max.y, max.z};
    double low[] = {matrix(3, 0), matrix(3, 1), matrix(3, 2)};
    double high[] = {low[0], low[1], low[2]};
    for (unsigned i = 0; i < 3; ++i)
        for (unsigned j = 0; j < 3; ++j)
        {
            const double a = matrix(i, j) * oldMin[i];
            const double b = matrix(i, j) * oldMax[i];
            low[j] += std::min(a, b);
            high[j] += std::max(a, b);
        }
    min = PointFlt(low[0], low[1], low[2]);
    max = PointFlt(high[0], high[1], high[2]);
}

} // namespace

AABoundingBox::AABoundingBox(const GeometryDataIndex& /*indices*/) noexcept : AABoundingBox(PointFlt(), PointFlt()) {}

bool AABoundingBox::isValid() const { return !(fMin.x > fMax.x || fMin.y > fMax.y || fMin.z > fMax.z); }

void AABoundingBox::setInvalid() { *this = AABoundingBox(); }

void AABoundingBox::transform(krLinear::AffineMatrix& matrix)
{
    if (isValid())
        mapBounds(fMin, fMax, matrix);
}

AABoundingBox AABoundingBox::transformed(const krLinear::AffineMatrix& matrix) const
{
    AABoundingBox result(fMin, fMax);
    if (isValid())
        mapBounds(result.fMin, result.fMax, matrix);
    return result;
}

void AABoundingBox::addPoint(const PointFlt& point)
{
    // A point may move both bounds: the first point of an invalid box does.
    for (float PointFlt::*const axis : kAxes)
    {
        lower(fMin.*axis, point.*axis);
        raise(fMax.*axis, point.*axis);
    }
}

void AABoundingBox::addPoints(const std::vector<PointFlt>& points)
{
    // Each lane grows the bounds of one axis: four points fill three vectors, xyzx yzxy zxyz.
    constexpr unsigned kVectors = 6;
    constexpr unsigned kNumbers = 4 * kVectors;
    Lanes low[kVectors];
    Lanes high[kVectors];
    const PointFlt oldMin = fMin;
    const PointFlt oldMax = fMax;
    for (unsigned i = 0; i < kNumbers; ++i)
    {
        low[i / 4][i % 4] = oldMin.*kAxes[i % 3];
        high[i / 4][i % 4] = oldMax.*kAxes[i % 3];
    }

    std::size_t next = 0;
    for (; points.size() - next >= kNumbers / 3; next += kNumbers / 3)
    {
        __builtin_prefetch(reinterpret_cast<const char*>(&points[next]) + 2048);
        Lanes numbers[kVectors];
        std::memcpy(numbers, &points[next], sizeof numbers);
        for (unsigned v = 0; v < kVectors; ++v)
        {
            low[v] = low[v] > numbers[v] ? numbers[v] : low[v];
            high[v] = numbers[v] > high[v] ? numbers[v] : high[v];
        }
    }

    for (unsigned i = 0; i < kNumbers; ++i)
    {
        float PointFlt::*const axis = kAxes[i % 3];
        lower(fMin.*axis, low[i / 4][i % 4]);
        raise(fMax.*axis, high[i / 4][i % 4]);
    }
    for (; next < points.size(); ++next)
        AABoundingBox::addPoint(points[next]);

    for (float PointFlt::*const axis : kAxes)
    {
        settleZero(fMin.*axis, oldMin.*axis, points, axis);
        settleZero(fMax.*axis, oldMax.*axis, points, axis);
    }
}

PointFlt AABoundingBox::center() const
{
    if (!isValid())
        return {};
    return {(fMin.x + fMax.x) * 0.5f, (fMin.y + fMax.y) * 0.5f, (fMin.z + fMax.z) * 0.5f};
}

float AABoundingBox::radius() const
{
    return isValid() ? static_cast<float>(krLinear::distance(center(), fMax)) : 0.0f;
}

void AABoundingBox::set(const PointFlt& min, const PointFlt& max) noexcept
{
    fMin = min;
    fMax = max;
}

void AABoundingBox::set(const GeometryDataIndex& /*indices*/) noexcept {}

AABoundingBox AABoundingBox::operator+(const IBoundingPlanes& other) const
{
    AABoundingBox sum(*this);
    sum += other;
    return sum;
}

AABoundingBox& AABoundingBox::operator+=(const IBoundingPlanes& other)
{
    addPoint(other.min());
    addPoint(other.max());
    return *this;
}

bool AABoundingBox::classify(IntersectType type, const PointFlt& point) const noexcept
{
    switch (type)
    {
    case Outside:
        return point.x < fMin.x || point.y < fMin.y || point.z < fMin.z || point.x > fMax.x || point.y > fMax.y ||
               point.z > fMax.z;
    case Inside:
        return between(fMin.x, point.x, fMax.x) && between(fMin.y, point.y, fMax.y) && between(fMin.z, point.z, fMax.z);
    case Intersect:
        if (point.x == fMin.x || point.x == fMax.x)
            return between(fMin.y, point.y, fMax.y) && between(fMin.z, point.z, fMax.z);
        if (point.y == fMin.y || point.y == fMax.y)
            return between(fMin.x, point.x, fMax.x) && between(fMin.z, point.z, fMax.z);
        // Deliberate: on the z faces the upper bounds are those of the next axis.
        if (point.z == fMin.z || point.z == fMax.z)
            return between(fMin.x, point.x, fMax.y) && between(fMin.y, point.y, fMax.z);
        return false;
    }
    return false;
}

bool AABoundingBox::classify(IntersectType type, const AABoundingBox& box) const noexcept
{
    const auto contains = [this, &box]
    {
        return box.fMin.x >= fMin.x && box.fMin.y >= fMin.y && box.fMin.z >= fMin.z && fMax.x >= box.fMax.x &&
               fMax.y >= box.fMax.y && fMax.z >= box.fMax.z;
    };
    const auto meets = [this, &box]
    {
        return box.fMax.x >= fMin.x && box.fMax.y >= fMin.y && box.fMax.z >= fMin.z && fMax.x >= box.fMin.x &&
               fMax.y >= box.fMin.y && fMax.z >= box.fMin.z;
    };
    switch (type)
    {
    case Outside:
        return !contains() && !meets();
    case Inside:
        return contains();
    case Intersect:
        return meets();
    }
    return false;
}

bool AABoundingBox::classify(IntersectType type, const BoundingSphere& sphere) const
{
    if (type != Intersect)
        return false;
    const PointFlt center = sphere.center();
    float distance = 0.0f; // squared
    for (float PointFlt::*const axis : kAxes)
    {
        // In an inverted box the center may lie below min and above max at once; both count.
        if (center.*axis < fMin.*axis)
            distance += squared(center.*axis - fMin.*axis);
        if (center.*axis > fMax.*axis)
            distance += squared(center.*axis - fMax.*axis);
    }
    return distance <= squared(sphere.radius());
}

bool AABoundingBox::classify(IntersectType /*type*/, const Frustum& /*frustum*/) const noexcept { return false; }
