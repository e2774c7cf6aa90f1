#pragma once
#include <krender/spatial/IBoundingPlanes.h>

#include <limits>

class BoundingSphere;
class Frustum;
class GeometryDataIndex;

/// An axis-aligned box. It is invalid where a coordinate of min lies above that of max; a box of one point is valid.
class KRENDER_EXPORT AABoundingBox : public IBoundingPlanes
{
public:
    /// Makes an invalid box, which the first point added turns into a box of that point.
    AABoundingBox() noexcept : AABoundingBox({kLargest, kLargest, kLargest}, {-kLargest, -kLargest, -kLargest}) {}
    /// Takes the corners as they are, in order or not.
    AABoundingBox(const krLinear::PointFlt& min, const krLinear::PointFlt& max) noexcept
        : IBoundingPlanes(kBoxBounds), fMin(min), fMax(max)
    {
    }
    /// Takes min() and max() of a volume, valid or not.
    explicit AABoundingBox(const IBoundingPlanes& planes) : AABoundingBox(planes.min(), planes.max()) {}
    /// Copies what `other` shows as min() and max(), which a derived box may override.
    AABoundingBox(const AABoundingBox& other) : AABoundingBox(static_cast<const IBoundingPlanes&>(other)) {}
    /// Makes a box that is yet to be given its corners; the list is not looked at.
    explicit AABoundingBox(const GeometryDataIndex& indices) noexcept;
    AABoundingBox& operator=(const AABoundingBox&) noexcept = default;
    ~AABoundingBox() override = default;

    [[nodiscard]] bool isValid() const override { return !(fMin.x > fMax.x || fMin.y > fMax.y || fMin.z > fMax.z); }
    void setInvalid() override;

    /// Maps the corners; the box of the mapped box. An invalid box stays as it is.
    void transform(krLinear::AffineMatrix& matrix) override;
    void addPoint(const krLinear::PointFlt& point) override;
    void addPoints(const std::vector<krLinear::PointFlt>& points) override;

    /// The middle of the box; (0, 0, 0) for an invalid one.
    [[nodiscard]] krLinear::PointFlt center() const override;
    /// Half the diagonal; 0 for an invalid box.
    [[nodiscard]] float radius() const override;
    [[nodiscard]] krLinear::PointFlt min() const override { return fMin; }
    [[nodiscard]] krLinear::PointFlt max() const override { return fMax; }

    void set(const krLinear::PointFlt& min, const krLinear::PointFlt& max) noexcept;
    /// Changes nothing: a box does not read index lists.
    void set(const GeometryDataIndex& indices) noexcept;
    void setMin(const krLinear::PointFlt& min) noexcept { fMin = min; }
    void setMax(const krLinear::PointFlt& max) noexcept { fMax = max; }

    /// This box grown by the other's min() and max().
    [[nodiscard]] AABoundingBox operator+(const IBoundingPlanes& other) const;
    AABoundingBox& operator+=(const IBoundingPlanes& other);

    /// Whether the point lies outside, inside (surface included) or on the surface (`Intersect`).
    [[nodiscard]] bool classify(IntersectType type, const krLinear::PointFlt& point) const noexcept;
    /// Whether `box` lies wholly inside this box, meets it (touching counts), or neither.
    [[nodiscard]] bool classify(IntersectType type, const AABoundingBox& box) const noexcept;
    /// Answers `Intersect` alone: whether the sphere meets the box or lies in it.
    [[nodiscard]] bool classify(IntersectType type, const BoundingSphere& sphere) const;
    /// Always false: ask the frustum.
    [[nodiscard]] bool classify(IntersectType type, const Frustum& frustum) const noexcept;

private:
    static constexpr float kLargest = std::numeric_limits<float>::max();

    krLinear::PointFlt fMin;
    krLinear::PointFlt fMax;
};
