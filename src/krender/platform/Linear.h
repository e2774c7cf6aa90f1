#pragma once
#include <krender/Export.h>

#include <array>
#include <cmath>
#include <concepts>
#include <type_traits>

/// Points, vectors and matrices. A point is a row vector that multiplies a matrix from the left (p * M), so a
/// translation stands in a matrix's last row and the leftmost factor of a product is applied first. Matrices are stored
/// row by row. Angles are in radians.
namespace krLinear
{

template <class T>
concept Number = std::is_arithmetic_v<T>;

/// A point in single precision, as geometry stores it.
struct PointFlt
{
    constexpr PointFlt() noexcept = default;
    template <Number X, Number Y, Number Z>
    constexpr PointFlt(X px, Y py, Z pz) noexcept
        : x(static_cast<float>(px)), y(static_cast<float>(py)), z(static_cast<float>(pz))
    {
    }
    friend constexpr bool operator==(const PointFlt&, const PointFlt&) noexcept = default;

    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

/// A point in double precision.
struct Point
{
    constexpr Point() noexcept = default;
    constexpr Point(double px, double py, double pz) noexcept : x(px), y(py), z(pz) {}
    constexpr explicit Point(const PointFlt& p) noexcept : x(p.x), y(p.y), z(p.z) {}
    friend constexpr bool operator==(const Point&, const Point&) noexcept = default;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// A direction with a length. A translation moves points and leaves vectors alone.
struct Vector
{
    constexpr Vector() noexcept = default;
    constexpr Vector(double vx, double vy, double vz) noexcept : x(vx), y(vy), z(vz) {}
    friend constexpr bool operator==(const Vector&, const Vector&) noexcept = default;

    [[nodiscard]] double length() const noexcept { return std::sqrt(x * x + y * y + z * z); }

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// The direction of a surface or an axis; its length carries no meaning.
struct Normal
{
    constexpr Normal() noexcept = default;
    constexpr Normal(double nx, double ny, double nz) noexcept : x(nx), y(ny), z(nz) {}
    friend constexpr bool operator==(const Normal&, const Normal&) noexcept = default;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// A homogeneous point; the point that it stands for is (x, y, z) / w.
struct HPoint
{
    constexpr HPoint() noexcept = default;
    constexpr HPoint(double px, double py, double pz, double pw) noexcept : x(px), y(py), z(pz), w(pw) {}
    friend constexpr bool operator==(const HPoint&, const HPoint&) noexcept = default;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;
};

/// The distance of two points, computed in double.
[[nodiscard]] inline double distance(const PointFlt& a, const PointFlt& b) noexcept
{
    return Vector(static_cast<double>(b.x) - a.x, static_cast<double>(b.y) - a.y, static_cast<double>(b.z) - a.z)
        .length();
}

/// An affine map: four rows of three doubles, rows 0 to 2 the linear part, row 3 the translation; the fourth column,
/// (0, 0, 0, 1), is implied.
class KRENDER_EXPORT AffineMatrix
{
public:
    /// The identity.
    constexpr AffineMatrix() noexcept : AffineMatrix(1.0) {}
    /// A uniform scale: `diagonal` on the diagonal of the linear part, no translation; 1.0 gives the identity.
    constexpr explicit AffineMatrix(double diagonal) noexcept
        : fElements{diagonal, 0, 0, 0, diagonal, 0, 0, 0, diagonal, 0, 0, 0}
    {
    }

    /// The element at a row of 0 to 3 and a column of 0 to 2.
    [[nodiscard]] constexpr double operator()(unsigned row, unsigned column) const noexcept
    {
        return fElements[3 * row + column];
    }
    [[nodiscard]] constexpr double& operator()(unsigned row, unsigned column) noexcept
    {
        return fElements[3 * row + column];
    }
    friend constexpr bool operator==(const AffineMatrix&, const AffineMatrix&) noexcept = default;

    /// The inverse map. The inverse of a singular matrix has elements that are not finite.
    [[nodiscard]] AffineMatrix inverse() const noexcept;
    /// The point multiplied from the left: p * M, the translation included.
    [[nodiscard]] Point preMult(const Point& p) const noexcept;

    /// Makes this the identity.
    void identity() noexcept { *this = AffineMatrix(1.0); }
    /// Puts a rotation ahead of this map: M becomes R * M, so points are rotated first and then mapped as before.
    /// The rotation is counter-clockwise when looking against the axis (right-handed), after Rodrigues' formula.
    /// @param angle  radians
    /// @param axis   need not have unit length; a zero axis changes nothing
    void rotate(double angle, const Normal& axis) noexcept;
    /// Puts a translation ahead of this map: M becomes T * M, so points are moved first and then mapped as before.
    void translate(const Vector& offset) noexcept;

private:
    std::array<double, 12> fElements;
};

/// The map that applies `first` and then `second`: first * second.
[[nodiscard]] KRENDER_EXPORT AffineMatrix operator*(const AffineMatrix& first, const AffineMatrix& second) noexcept;

/// A projective map: 16 doubles, element 4r + c at row r, column c.
class KRENDER_EXPORT ProjMatrix
{
public:
    /// The identity.
    constexpr ProjMatrix() noexcept : ProjMatrix(1.0) {}
    /// `diagonal` in all four places of the diagonal; 1.0 gives the identity.
    constexpr explicit ProjMatrix(double diagonal) noexcept
        : fElements{diagonal, 0, 0, 0, 0, diagonal, 0, 0, 0, 0, diagonal, 0, 0, 0, 0, diagonal}
    {
    }
    /// The 16 elements, row by row.
    constexpr explicit ProjMatrix(const std::array<double, 16>& elements) noexcept : fElements(elements) {}
    /// @param elements  16 doubles, row by row; copied
    explicit ProjMatrix(const double* elements) noexcept;
    /// The same map as `affine`, its fourth column written out.
    explicit ProjMatrix(const AffineMatrix& affine) noexcept;

    [[nodiscard]] constexpr double operator()(unsigned row, unsigned column) const noexcept
    {
        return fElements[4 * row + column];
    }
    [[nodiscard]] constexpr double& operator()(unsigned row, unsigned column) noexcept
    {
        return fElements[4 * row + column];
    }
    /// The 16 elements, row by row.
    [[nodiscard]] constexpr const double* elements() const noexcept { return fElements.data(); }
    /// Exact comparison of all elements, after IEEE rules: -0 equals 0, NaN equals nothing.
    friend constexpr bool operator==(const ProjMatrix&, const ProjMatrix&) noexcept = default;

    /// Sets `result` to `p` multiplied from the left, p * M, without a division by w; both may be one object.
    void preMult(HPoint& result, const HPoint& p) const noexcept;

private:
    std::array<double, 16> fElements;
};

/// The map that applies `first` and then `second`: first * second.
[[nodiscard]] KRENDER_EXPORT ProjMatrix operator*(const ProjMatrix& first, const ProjMatrix& second) noexcept;

/// The tolerance below which two matrices count as one.
inline constexpr double epsilonTol = 1e-10;

/// Whether every pair of elements differs by at most `tolerance`; false where a NaN is met.
[[nodiscard]] KRENDER_EXPORT bool equivalent(const ProjMatrix& a, const ProjMatrix& b, double tolerance) noexcept;

} // namespace krLinear
