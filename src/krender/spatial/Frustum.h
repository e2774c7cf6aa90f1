#pragma once
#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/IBounds.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <span>

/// The view volume of a camera: six planes whose insides face each other. The tests look at the planes alone: without
/// planes (all coefficients 0) every sphere of positive radius and no box is in the frustum.
///
/// The tests are computed in double without fused multiplication; a host that lets its compiler fuse them
/// (-ffp-contract=fast on a machine that can) may get the other answer within a rounding error of a plane.
class KRENDER_EXPORT Frustum : public IBounds
{
public:
    /// The plane a x + b y + c z + d = 0 with (a, b, c) of unit length; points inside give a positive value.
    struct Plane
    {
        double a = 0.0;
        double b = 0.0;
        double c = 0.0;
        double d = 0.0;
    };

    /// Makes a frustum without planes; its bounds type is unknown.
    Frustum() noexcept : IBounds(kUnknownBounds) {}
    /// Takes over no planes: a camera that is copied must be given its matrices anew before it culls.
    Frustum(const Frustum& other) noexcept;
    explicit Frustum(const krLinear::ProjMatrix& matrix) noexcept;
    /// Takes over everything, unlike the copy constructor.
    Frustum& operator=(const Frustum&) noexcept = default;
    ~Frustum() override = default;

    /// Whether planes have been computed.
    [[nodiscard]] bool isValid() const override { return fValid; }
    /// Makes all coefficients 0.
    void setInvalid() override;

    /// Right, left, bottom, top, far, near.
    [[nodiscard]] std::array<Plane, 6> planes() const noexcept;

    /// Takes the planes from the map from world space to clip space, after Gribb and Hartmann, "Fast extraction of
    /// viewing frustum planes from the world-view-projection matrix". A matrix that yields no planes is not refused:
    /// its coefficients are not finite.
    void recomputePlaneEquations(const krLinear::ProjMatrix& matrix) noexcept;

    /// Whether no plane has the sphere wholly behind it; touching a plane from behind counts as behind.
    [[nodiscard]] bool sphereInFrustum(double x, double y, double z, double radius) const noexcept;
    /// Whether no plane has all corners of the box behind or on it. A box near an edge of the frustum may pass although
    /// it lies outside.
    [[nodiscard]] bool boxInFrustum(double minX, double minY, double minZ, double maxX, double maxY,
                                    double maxZ) const noexcept;
    /// The test for the volume's bounds type, for `Intersect` alone; false for other relations and other volumes.
    [[nodiscard]] bool classify(IntersectType type, const IBoundingVolume& volume) const;

    /// Answers for each sphere what classify answers for `Intersect`, faster than one by one.
    /// @param spheres   spheres proper, of no derived class
    /// @param visible   as many bytes as spheres (fewer end the work early): 1 in the frustum, 0 outside
    void classifySpheres(std::span<const BoundingSphere> spheres, std::span<std::uint8_t> visible) const noexcept;
    /// The same for boxes.
    void classifyBoxes(std::span<const AABoundingBox> boxes, std::span<std::uint8_t> visible) const noexcept;

private:
    /// Two numbers that one instruction works on.
    using Pair = double __attribute__((vector_size(2 * sizeof(double))));

    /// Two planes side by side.
    struct PlanePair
    {
        Pair a;
        Pair b;
        Pair c;
        Pair d;
    };

    [[nodiscard]] static Pair larger(const Pair& u, const Pair& v) noexcept { return u > v ? u : v; }
    /// boxInFrustum corner by corner, for any input.
    [[nodiscard]] bool anyCornerInFront(double minX, double minY, double minZ, double maxX, double maxY,
                                        double maxZ) const noexcept;

    std::array<PlanePair, 3> fPlanes{};
    bool fValid = false;
};

// All planes are looked at, two at a time: that costs less than the branches that would spare some of them.

inline bool Frustum::sphereInFrustum(double x, double y, double z, double radius) const noexcept
{
    const auto behind = [=](const PlanePair& p) { return -radius >= p.a * x + p.b * y + p.c * z + p.d; };
    const auto any = behind(fPlanes[0]) | behind(fPlanes[1]) | behind(fPlanes[2]);
    return (any[0] | any[1]) == 0;
}

inline bool Frustum::boxInFrustum(double minX, double minY, double minZ, double maxX, double maxY,
                                  double maxZ) const noexcept
{
    // Rounding is monotone, so the corner with the largest product on each axis has the largest value of all eight.
    const auto farthest = [=](const PlanePair& p)
    { return larger(p.a * minX, p.a * maxX) + larger(p.b * minY, p.b * maxY) + larger(p.c * minZ, p.c * maxZ) + p.d; };
    const Pair value0 = farthest(fPlanes[0]);
    const Pair value1 = farthest(fPlanes[1]);
    const Pair value2 = farthest(fPlanes[2]);
    // A NaN stems from an infinity or an overflow, and another corner may still be in front.
    const Pair sum = value0 + value1 + value2;
    if (std::isnan(sum[0] + sum[1])) [[unlikely]]
        return anyCornerInFront(minX, minY, minZ, maxX, maxY, maxZ);
    const auto behind = (value0 <= 0.0) | (value1 <= 0.0) | (value2 <= 0.0);
    return (behind[0] | behind[1]) == 0;
}
