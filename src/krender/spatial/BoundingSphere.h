#pragma once
#include <krender/Export.h>
#include <krender/platform/Linear.h>
#include <krender/spatial/IBoundingPlanes.h>
#include <krender/spatial/IBounds.h>

#include <vector>

class AABoundingBox;
class Frustum;
class GeometryDataIndex;

/// A bounding sphere. It is valid if its radius is greater than 0.
class KRENDER_EXPORT BoundingSphere : public IBoundingPlanes
{
public:
    /// Makes a sphere of radius 0 at the origin, which is invalid.
    BoundingSphere() noexcept : BoundingSphere({}, 0.0f) {}
    BoundingSphere(const krLinear::PointFlt& center, float radius) noexcept
        : IBoundingPlanes(kSphereBounds), fCenter(center), fRadius(radius)
    {
    }
    /// Takes center() and radius() of a valid volume; an invalid one gives radius 0 at the origin.
    explicit BoundingSphere(const IBoundingPlanes& planes);
    /// Makes a sphere whose center and radius the caller has yet to set (they are 0); the list is not read. Deliberate.
    explicit BoundingSphere(const GeometryDataIndex& indices) noexcept;
    BoundingSphere(const BoundingSphere&) noexcept = default;
    BoundingSphere& operator=(const BoundingSphere&) noexcept = default;
    ~BoundingSphere() override = default;

    [[nodiscard]] bool isValid() const override;
    /// Sets the radius to -1; the center stays.
    void setInvalid() override;

    /// Maps the center and multiplies the radius by the length of the longest of rows 0, 1 and 2 of the matrix, which
    /// is too short for some matrices that shear. An invalid sphere is mapped too.
    void transform(krLinear::AffineMatrix& matrix) override;
    /// The sphere that transform() would make of this one.
    [[nodiscard]] BoundingSphere transformed(const krLinear::AffineMatrix& matrix) const;
    /// Grows towards a point outside: the center moves towards it by its distance from the surface, and the radius
    /// grows by half that distance. Deliberate: the result need contain neither all of the old sphere nor, if the
    /// radius was negative, the point.
    void addPoint(const krLinear::PointFlt& point) override;
    /// Calls addPoint for each point in order.
    void addPoints(const std::vector<krLinear::PointFlt>& points) override;

    [[nodiscard]] krLinear::PointFlt center() const override { return fCenter; }
    [[nodiscard]] float radius() const override { return fRadius; }
    [[nodiscard]] krLinear::PointFlt min() const override;
    [[nodiscard]] krLinear::PointFlt max() const override;

    void set(const krLinear::PointFlt& center, float radius) noexcept;
    /// Changes nothing; the list is not read. Deliberate.
    void set(const GeometryDataIndex& indices) noexcept;
    void setCenter(const krLinear::PointFlt& center) noexcept { fCenter = center; }
    void setRadius(float radius) noexcept { fRadius = radius; }

    /// The sphere at the mean of both centers whose radius is the sum of both radii. Deliberate: it is not the smallest
    /// and need not contain both.
    [[nodiscard]] BoundingSphere operator+(const IBoundingPlanes& other) const;
    BoundingSphere& operator+=(const IBoundingPlanes& other);

    /// Whether the point lies outside, inside (surface excluded), or on the surface (`Intersect`: its squared distance
    /// from the center and the squared radius differ by at most 1e-5).
    [[nodiscard]] bool classify(IntersectType type, const krLinear::PointFlt& point) const noexcept;
    /// The answer of the box's classify for this sphere.
    [[nodiscard]] bool classify(IntersectType type, const AABoundingBox& box) const;
    /// Whether `sphere` lies inside this sphere, meets it (touching counts), or neither.
    [[nodiscard]] bool classify(IntersectType type, const BoundingSphere& sphere) const;
    /// Always false; Frustum::classify tests a sphere against a frustum.
    [[nodiscard]] bool classify(IntersectType type, const Frustum& frustum) const noexcept;

private:
    krLinear::PointFlt fCenter;
    float fRadius;
};
