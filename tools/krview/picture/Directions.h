#pragma once
#include <array>
#include <cmath>
#include <cstddef>

// How cube maps lie in space, which is as OpenGL has it: the faces are +x, -x, +y, -y, +z and -z, and the first row of a
// face's pixels is at t = -1.

inline constexpr unsigned kFaces = 6;

/// A vector in world space.
template <class Number>
using Direction = std::array<Number, 3>;

/// The direction through a point of a cube face, whose greatest component is 1 or -1.
/// @param s, t  across and along the rows, -1 to 1; beyond that the plane of the face goes on
template <class Number>
[[nodiscard]] constexpr Direction<Number> faceDirection(unsigned face, Number s, Number t)
{
    switch (face)
    {
    case 0:
        return {1, -t, -s};
    case 1:
        return {-1, -t, s};
    case 2:
        return {s, 1, t};
    case 3:
        return {s, -1, -t};
    case 4:
        return {s, -t, 1};
    default:
        return {-s, -t, -1};
    }
}

/// A point of a cube face, -1 to 1.
struct FacePoint
{
    unsigned face;
    float s;
    float t;
};

/// Where a direction of any length but 0 meets the cube.
[[nodiscard]] inline FacePoint facePoint(const Direction<float>& d)
{
    const auto [x, y, z] = d;
    const float ax = std::abs(x);
    const float ay = std::abs(y);
    const float az = std::abs(z);
    if (ax >= ay && ax >= az)
        return x > 0 ? FacePoint{0, -z / ax, -y / ax} : FacePoint{1, z / ax, -y / ax};
    if (ay >= az)
        return y > 0 ? FacePoint{2, x / ay, z / ay} : FacePoint{3, x / ay, -z / ay};
    return z > 0 ? FacePoint{4, x / az, -y / az} : FacePoint{5, -x / az, -y / az};
}

/// The middle of a pixel among so many, -1 to 1.
template <class Number>
[[nodiscard]] constexpr Number pixelCentre(std::size_t pixel, std::size_t count)
{
    return static_cast<Number>(2 * pixel + 1) / static_cast<Number>(count) - 1;
}
