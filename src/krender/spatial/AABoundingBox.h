#pragma once
#include <krender/Export.h>
#include <krender/platform/Linear.h>
#include <krender/spatial/IBoundingPlanes.h>
#include <krender/spatial/IBounds.h>

#include <limits>
#include <vector>

class BoundingSphere;
class Frustum;
class GeometryDataIndex;

/// An axis-aligned box. It is invalid if min exceeds max on some axis; a box of one point is valid.
class KRENDER_EXPORT AABoundingBox : public IBoundingPlanes
{
public:
    /// Makes an invalid box; the first point added becomes both of its corners.
    AABoundingBox() noexcept : AABoundingBox({kLargest, kLargest, kLargest}, {-kLargest, -kLargest, -kLargest}) {}
    /// Stores the corners as they are, even if min exceeds max.
    AABoundingBox(const krLinear::PointFlt& min, const krLinear::PointFlt& max) noexcept
        : IBoundingPlanes(kBoxBounds), fMin(min), fMax(max)
    {
    }
    /// Takes min() and max() of a volume, valid or not. A sphere of negative radius gives an inverted box.
    explicit AABoundingBox(const IBoundingPlanes& planes) : AABoundingBox(planes.min(), planes.max()) {}
    /// Takes what min() and max() of `other` return, which a derived box may override.
    AABoundingBox(const AABoundingBox& other) : AABoundingBox(static_cast<const IBoundingPlanes&>(other)) {}
    /// Makes a box whose corners the caller has yet to set (they are the origin); the list is not read. Deliberate.
    explicit AABoundingBox(const GeometryDataIndex& indices) noexcept;
    AABoundingBox& operator=(const AABoundingBox&) noexcept = default;
    ~AABoundingBox() override = default;

    [[nodiscard]] bool isValid() const override;
    /// Returns to the state of a default box.
    void setInvalid() override;

    /// Becomes the box around the mapped box, after Arvo, "Transforming axis-aligned bounding boxes". An invalid box
    /// stays as it is.
    void transform(krLinear::AffineMatrix& matrix) override;
    /// The box that transform() would make of this one.
    [[nodiscard]] AABoundingBox transformed(const krLinear::AffineMatrix& matrix) const;
    void addPoint(const krLinear::PointFlt& point) override;
    void addPoints(const std::vector<krLinear::PointFlt>& points) override;

    /// The middle of the box; (0, 0, 0) for an invalid one.
    [[nodiscard]] krLinear::PointFlt center() const override;
    /// Half the diagonal; 0 for an invalid box.
    [[nodiscard]] float radius() const override;
    [[nodiscard]] krLinear::PointFlt min() const override { return fMin; }
    [[nodiscard]] krLinear::PointFlt max() const override { return fMax; }

    void set(const krLinear::PointFlt& min, const krLinear::PointFlt& max) noexcept;
    /// Changes nothing; the list is not read. Deliberate.
    void set(const GeometryDataIndex& indices) noexcept;
    void setMin(const krLinear::PointFlt& min) noexcept { fMin = min; }
    void setMax(const krLinear::PointFlt& max) noexcept { fMax = max; }

    /// This box grown by the points min() and max() of the other volume.
    [[nodiscard]] AABoundingBox operator+(const IBoundingPlanes& other) const;
    AABoundingBox& operator+=(const IBoundingPlanes& other);

    /// Whether the point lies outside, inside (surface included) or on the surface (`Intersect`). Deliberate: on the z
    /// faces the surface ends at max.y along x and at max.z along y.
    [[nodiscard]] bool classify(IntersectType type, const krLinear::PointFlt& point) const noexcept;
    /// Whether `box` lies inside this box, meets it (touching counts), or neither.
    [[nodiscard]] bool classify(IntersectType type, const AABoundingBox& box) const noexcept;
    /// Whether the sphere meets the box or lies in it (`Intersect`), after Arvo, "A simple method for box-sphere
    /// intersection testing"; false for the other relations.
    [[nodiscard]] bool classify(IntersectType type, const BoundingSphere& sphere) const;
    /// Always false; Frustum::classify tests a box against a frustum.
    [[nodiscard]] bool classify(IntersectType type, const Frustum& frustum) const noexcept;

private:
    static constexpr float kLargest = std::numeric_limits<float>::max();

    krLinear::PointFlt fMin;
    krLinear::PointFlt fMax;
};
