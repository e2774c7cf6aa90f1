#include <krender/platform/Linear.h>

#include <algorithm>

namespace krLinear
{

AffineMatrix AffineMatrix::inverse() const noexcept
{
    const AffineMatrix& m = *this;
    // The cofactor of row r, column c: taking the other rows and columns in cyclic order gives the sign.
    const auto cofactor = [&m](unsigned r, unsigned c)
    {
        const unsigned r1 = (r + 1) % 3;
        const unsigned r2 = (r + 2) % 3;
        const unsigned c1 = (c + 1) % 3;
        const unsigned c2 = (c + 2) % 3;
        return m(r1, c1) * m(r2, c2) - m(r1, c2) * m(r2, c1);
    };
    const double determinant = m(0, 0) * cofactor(0, 0) + m(0, 1) * cofactor(0, 1) + m(0, 2) * cofactor(0, 2);

    AffineMatrix result;
    for (unsigned r = 0; r < 3; ++r)
        for (unsigned c = 0; c < 3; ++c)
            result(r, c) = cofactor(c, r) / determinant;
    for (unsigned c = 0; c < 3; ++c)
        result(3, c) = -(m(3, 0) * result(0, c) + m(3, 1) * result(1, c) + m(3, 2) * result(2, c));
    return result;
}

Point AffineMatrix::preMult(const Point& p) const noexcept
{
    const AffineMatrix& m = *this;
    return {p.x * m(0, 0) + p.y * m(1, 0) + p.z * m(2, 0) + m(3, 0),
            p.x * m(0, 1) + p.y * m(1, 1) + p.z * m(2, 1) + m(3, 1),
            p.x * m(0, 2) + p.y * m(1, 2) + p.z * m(2, 2) + m(3, 2)};
}

void AffineMatrix::rotate(double angle, const Normal& axis) noexcept
{
    const double length = Vector(axis).length();
    if (length == 0.0)
        return;
    const double x = axis.x / length;
    const double y = axis.y / length;
    const double z = axis.z / length;
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    const double t = 1.0 - c;

    AffineMatrix rotation;
    rotation(0, 0) = c + t * x * x;
    rotation(0, 1) = t * x * y + s * z;
    rotation(0, 2) = t * x * z - s * y;
    rotation(1, 0) = t * x * y - s * z;
    rotation(1, 1) = c + t * y * y;
    rotation(1, 2) = t * y * z + s * x;
    rotation(2, 0) = t * x * z + s * y;
    rotation(2, 1) = t * y * z - s * x;
    rotation(2, 2) = c + t * z * z;
    *this = rotation * *this;
}

void AffineMatrix::translate(const Vector& offset) noexcept
{
    AffineMatrix& m = *this;
    const Vector mapped = offset * m;
    m(3, 0) += mapped.x;
    m(3, 1) += mapped.y;
    m(3, 2) += mapped.z;
}

AffineMatrix operator*(const AffineMatrix& first, const AffineMatrix& second) noexcept
{
    AffineMatrix product;
    for (unsigned r = 0; r < 4; ++r)
        for (unsigned c = 0; c < 3; ++c)
            product(r, c) = first(r, 0) * second(0, c) + first(r, 1) * second(1, c) + first(r, 2) * second(2, c) +
                            (r == 3 ? second(3, c) : 0.0);
    return product;
}

ProjMatrix::ProjMatrix(const double* elements) noexcept { std::copy_n(elements, fElements.size(), fElements.begin()); }

ProjMatrix::ProjMatrix(const AffineMatrix& affine) noexcept : ProjMatrix(1.0)
{
    for (unsigned r = 0; r < 4; ++r)
        for (unsigned c = 0; c < 3; ++c)
            (*this)(r, c) = affine(r, c);
}

void ProjMatrix::preMult(HPoint& result, const HPoint& p) const noexcept
{
    const ProjMatrix& m = *this;
    const auto component = [&](unsigned c) { return p.x * m(0, c) + p.y * m(1, c) + p.z * m(2, c) + p.w * m(3, c); };
    result = HPoint(component(0), component(1), component(2), component(3));
}

ProjMatrix operator*(const ProjMatrix& first, const ProjMatrix& second) noexcept
{
    ProjMatrix product;
    for (unsigned r = 0; r < 4; ++r)
        for (unsigned c = 0; c < 4; ++c)
            product(r, c) = first(r, 0) * second(0, c) + first(r, 1) * second(1, c) + first(r, 2) * second(2, c) +
                            first(r, 3) * second(3, c);
    return product;
}

bool equivalent(const ProjMatrix& a, const ProjMatrix& b, double tolerance) noexcept
{
    return std::equal(a.elements(), a.elements() + 16, b.elements(),
                      [tolerance](double x, double y) { return std::abs(x - y) <= tolerance; });
}

} // namespace krLinear
