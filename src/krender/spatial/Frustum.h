#pragma once
#include <krender/Export.h>
#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/IBoundingVolume.h>
#include <krender/spatial/IBounds.h>

#include <array>
#include <cstdint>
#include <span>

/// The view volume of a camera: six planes that face inwards. The tests read the planes alone, valid or not: without
/// planes (all coefficients 0) every sphere of positive radius and no box is in the frustum.
///
/// The tests are computed in double and round every product and sum, whatever flags the host is compiled with.
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

    /// Makes a frustum without planes; its bounds type is kUnknownBounds.
    Frustum() noexcept : IBounds(kUnknownBounds) {}
    /// Copies no planes: the new frustum is invalid until it is given a matrix. Deliberate.
    Frustum(const Frustum& other) noexcept;
    /// @param matrix  from world space to clip space
    explicit Frustum(const krLinear::ProjMatrix& matrix) noexcept;
    /// Copies everything, planes included, unlike the copy constructor.
    Frustum& operator=(const Frustum&) noexcept = default;
    ~Frustum() override = default;

    /// Whether planes have been computed.
    [[nodiscard]] bool isValid() const override { return fValid; }
    /// Sets all coefficients to 0.
    void setInvalid() override;

    /// The planes in the order right, left, bottom, top, far, near.
    [[nodiscard]] std::array<Plane, 6> planes() const noexcept;

    /// Extracts the planes of a matrix, after Gribb and Hartmann, "Fast extraction of viewing frustum planes from the
    /// world-view-projection matrix". A plane whose normal has length 0 is not refused: its coefficients are not finite.
    /// @param matrix  from world space to clip space
    void recomputePlaneEquations(const krLinear::ProjMatrix& matrix) noexcept;

    /// False if the sphere lies wholly behind some plane; touching a plane from behind counts as behind.
    [[nodiscard]] bool sphereInFrustum(double x, double y, double z, double radius) const noexcept;
    /// False if some plane has all corners of the box behind or on it. Near an edge of the frustum, a box outside may
    /// pass.
    [[nodiscard]] bool boxInFrustum(double minX, double minY, double minZ, double maxX, double maxY,
                                    double maxZ) const noexcept;
    /// Tests a box or a sphere, by the volume's bounds type; false for other volumes and relations other than
    /// `Intersect`.
    [[nodiscard]] bool classify(IntersectType type, const IBoundingVolume& volume) const;

    /// Tests many spheres at once, with the answers of sphereInFrustum.
    /// @param spheres  read as plain spheres: no override of a derived class is called
    /// @param visible  gets 1 for each sphere in the frustum and 0 for the others; when there are fewer bytes than
    ///                 spheres, the spheres left over are not tested
    void classifySpheres(std::span<const BoundingSphere> spheres, std::span<std::uint8_t> visible) const noexcept;
    /// The same for boxes, with the answers of boxInFrustum.
    void classifyBoxes(std::span<const AABoundingBox> boxes, std::span<std::uint8_t> visible) const noexcept;

private:
    /// Whether each plane has a corner of the box in front of it, corner by corner.
    [[nodiscard]] bool hasCornerInFrontOfEach(double minX, double minY, double minZ, double maxX, double maxY,
                                              double maxZ) const noexcept;

    // An array for each coefficient: loops over the planes then use vector instructions.
    std::array<double, 6> fA{};
    std::array<double, 6> fB{};
    std::array<double, 6> fC{};
    std::array<double, 6> fD{};
    bool fValid = false;
};
