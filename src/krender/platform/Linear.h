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

struct Normal;

/// A direction with a length. A translation moves points and leaves vectors alone.
struct Vector
{
    constexpr Vector() noexcept = default;
    constexpr Vector(double vx, double vy, double vz) noexcept : x(vx), y(vy), z(vz) {}
    constexpr explicit Vector(const Normal& n) noexcept;
    friend constexpr bool operator==(const Vector&, const Vector&) noexcept = default;

    [[nodiscard]] double length() const noexcept { return std::sqrt(x * x + y * y + z * z); }
    /// The vector of this direction and length 1, however long or short this one is; the zero vector gives itself.
    [[nodiscard]] Vector normalized() const noexcept;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// The direction of a surface or an axis; its length carries no meaning.
struct Normal
{
    constexpr Normal() noexcept = default;
    constexpr Normal(double nx, double ny, double nz) noexcept : x(nx), y(ny), z(nz) {}
    constexpr explicit Normal(const Vector& v) noexcept : x(v.x), y(v.y), z(v.z) {}
    friend constexpr bool operator==(const Normal&, const Normal&) noexcept = default;

    /// The normal of this direction and length 1; the zero normal gives itself.
    [[nodiscard]] Normal normalized() const noexcept { return Normal(Vector(*this).normalized()); }

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

constexpr Vector::Vector(const Normal& n) noexcept : x(n.x), y(n.y), z(n.z) {}

template <class T>
concept AnyPoint = std::same_as<T, PointFlt> || std::same_as<T, Point>;
template <class T>
concept AnyDirection = std::same_as<T, Vector> || std::same_as<T, Normal>;

// Arithmetic runs in double; a PointFlt is rounded once, when its result is stored. The difference of two points is a
// vector, and a vector moves a point.

[[nodiscard]] constexpr Vector operator+(const Vector& a, const Vector& b) noexcept
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
[[nodiscard]] constexpr Vector operator-(const Vector& a, const Vector& b) noexcept
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
[[nodiscard]] constexpr Vector operator*(const Vector& v, double s) noexcept { return {v.x * s, v.y * s, v.z * s}; }
[[nodiscard]] constexpr Vector operator*(double s, const Vector& v) noexcept { return v * s; }
[[nodiscard]] constexpr Vector operator/(const Vector& v, double s) noexcept { return {v.x / s, v.y / s, v.z / s}; }

/// The opposite direction.
template <AnyDirection T>
[[nodiscard]] constexpr T operator-(const T& direction) noexcept
{
    return {-direction.x, -direction.y, -direction.z};
}

template <AnyPoint T>
[[nodiscard]] constexpr T operator+(const T& p, const Vector& v) noexcept
{
    return {p.x + v.x, p.y + v.y, p.z + v.z};
}
template <AnyPoint T>
[[nodiscard]] constexpr T operator-(const T& p, const Vector& v) noexcept
{
    return {p.x - v.x, p.y - v.y, p.z - v.z};
}
/// The vector from `b` to `a`.
template <AnyPoint T>
[[nodiscard]] constexpr Vector operator-(const T& a, const T& b) noexcept
{
    return Vector(a.x, a.y, a.z) - Vector(b.x, b.y, b.z);
}
/// The point scaled about the origin.
template <AnyPoint T>
[[nodiscard]] constexpr T operator*(const T& p, double s) noexcept
{
    return {p.x * s, p.y * s, p.z * s};
}
template <AnyPoint T>
[[nodiscard]] constexpr T operator*(double s, const T& p) noexcept
{
    return p * s;
}

template <AnyDirection A, AnyDirection B>
[[nodiscard]] constexpr double dot(const A& a, const B& b) noexcept
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
/// The vector at right angles to both: x cross y is z.
template <AnyDirection A, AnyDirection B>
[[nodiscard]] constexpr Vector cross(const A& a, const B& b) noexcept
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline Vector Vector::normalized() const noexcept
{
    // Scaled by the largest component first, so that no square overflows or vanishes.
    const double largest = std::fmax(std::fmax(std::fabs(x), std::fabs(y)), std::fabs(z));
    if (largest == 0.0)
        return *this;
    const Vector scaled = *this / largest;
    return scaled / scaled.length();
}

/// The distance of two points, computed in double.
[[nodiscard]] inline double distance(const PointFlt& a, const PointFlt& b) noexcept { return (b - a).length(); }

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
    /// The 12 elements, row by row.
    constexpr explicit AffineMatrix(const std::array<double, 12>& elements) noexcept : fElements(elements) {}

    /// The element at a row of 0 to 3 and a column of 0 to 2.
    [[nodiscard]] constexpr double operator()(unsigned row, unsigned column) const noexcept
    {
        return fElements[3 * row + column];
    }
    [[nodiscard]] constexpr double& operator()(unsigned row, unsigned column) noexcept
    {
        return fElements[3 * row + column];
    }
    /// The 12 elements, row by row.
    [[nodiscard]] constexpr const double* elements() const noexcept { return fElements.data(); }
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

/// As preMult().
[[nodiscard]] inline Point operator*(const Point& p, const AffineMatrix& m) noexcept { return m.preMult(p); }
/// The vector through the linear part alone: a translation leaves vectors as they are.
[[nodiscard]] constexpr Vector operator*(const Vector& v, const AffineMatrix& m) noexcept
{
    return {v.x * m(0, 0) + v.y * m(1, 0) + v.z * m(2, 0), v.x * m(0, 1) + v.y * m(1, 1) + v.z * m(2, 1),
            v.x * m(0, 2) + v.y * m(1, 2) + v.z * m(2, 2)};
}
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

    /// The element at a row and a column of 0 to 3.
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

/// How far two matrices that count as equal may differ in an element.
inline constexpr double epsilonTol = 1e-10;

/// Whether every pair of elements differs by at most `tolerance`; a NaN differs from everything.
[[nodiscard]] KRENDER_EXPORT bool equivalent(const ProjMatrix& a, const ProjMatrix& b, double tolerance) noexcept;

} // namespace krLinear
