#pragma once
#include <krender/spatial/IBoundingPlanes.h>

class AABoundingBox;
class Frustum;
class GeometryDataIndex;

/// A bounding sphere. It is valid while its radius is above 0.
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
    /// Makes a sphere that is yet to be given its place; the list is not looked at.
    explicit BoundingSphere(const GeometryDataIndex& indices) noexcept;
    BoundingSphere(const BoundingSphere&) noexcept = default;
    BoundingSphere& operator=(const BoundingSphere&) noexcept = default;
    ~BoundingSphere() override = default;

    [[nodiscard]] bool isValid() const override { return fRadius > 0.0f; }
    /// Makes the radius -1.
    void setInvalid() override;

    /// Maps the center and scales the radius by the longest of the matrix's three axes.
    void transform(krLinear::AffineMatrix& matrix) override;
    /// Grows towards a point outside: the center moves by the point's distance from the surface, the radius grows by
    /// half of it. The grown sphere holds the point, but need not hold all of the old sphere.
    void addPoint(const krLinear::PointFlt& point) override;
    void addPoints(const std::vector<krLinear::PointFlt>& points) override;

    [[nodiscard]] krLinear::PointFlt center() const override { return fCenter; }
    [[nodiscard]] float radius() const override { return fRadius; }
    [[nodiscard]] krLinear::PointFlt min() const override;
    [[nodiscard]] krLinear::PointFlt max() const override;

    void set(const krLinear::PointFlt& center, float radius) noexcept;
    /// Changes nothing: a sphere does not read index lists.
    void set(const GeometryDataIndex& indices) noexcept;
    void setCenter(const krLinear::PointFlt& center) noexcept { fCenter = center; }
    void setRadius(float radius) noexcept { fRadius = radius; }

    /// The sphere at the mean of both centers whose radius is the sum of both radii.
    [[nodiscard]] BoundingSphere operator+(const IBoundingPlanes& other) const;
    BoundingSphere& operator+=(const IBoundingPlanes& other);

    /// Whether the point lies outside, inside, or on the surface (`Intersect`: the squared distances from the center
    /// differ by at most 1e-5).
    [[nodiscard]] bool classify(IntersectType type, const krLinear::PointFlt& point) const noexcept;
    /// What the box answers about this sphere.
    [[nodiscard]] bool classify(IntersectType type, const AABoundingBox& box) const;
    /// Whether `sphere` lies wholly inside this sphere, meets it (touching counts), or neither.
    [[nodiscard]] bool classify(IntersectType type, const BoundingSphere& sphere) const;
    /// Always false: ask the frustum.
    [[nodiscard]] bool classify(IntersectType type, const Frustum& frustum) const noexcept;

private:
    krLinear::PointFlt fCenter;
    float fRadius;
};
