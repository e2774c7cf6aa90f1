#pragma once
#include <krender/platform/Linear.h>
#include <krender/spatial/IBounds.h>

#include <array>

class IBoundingVolume;

/// The view volume of a camera: six planes whose insides face each other. The tests look at the planes alone: without
/// planes (all coefficients 0) every sphere of positive radius and no box is in the frustum.
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

    /// Makes a frustum without planes, of unknown bounds type until it is assigned one with planes.
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

    /// Takes the planes from the map from world space to clip space, after Gribb and Hartmann, "Fast extraction of
    /// viewing frustum planes from the world-view-projection matrix". Nothing guards against a matrix that yields no
    /// planes: its coefficients are not finite.
    void recomputePlaneEquations(const krLinear::ProjMatrix& matrix) noexcept;

    /// Right, left, bottom, top, far, near.
    [[nodiscard]] const std::array<Plane, 6>& planes() const noexcept { return fPlanes; }

    /// Whether no plane has the sphere wholly behind it; touching a plane from behind counts as behind.
    [[nodiscard]] bool sphereInFrustum(double x, double y, double z, double radius) const noexcept;
    /// Whether no plane has all corners of the box behind or on it. A box near an edge of the frustum may pass although
    /// it lies outside.
    [[nodiscard]] bool boxInFrustum(double minX, double minY, double minZ, double maxX, double maxY,
                                    double maxZ) const noexcept;
    /// The test for the volume's bounds type, for `Intersect` alone; false for other relations and other volumes.
    [[nodiscard]] bool classify(IntersectType type, const IBoundingVolume& volume) const;

private:
    std::array<Plane, 6> fPlanes;
    bool fValid = false;
};
