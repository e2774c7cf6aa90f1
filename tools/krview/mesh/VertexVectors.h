#pragma once
#include "PartArrays.h"

#include <krender/platform/Linear.h>

#include <array>
#include <cstddef>
#include <span>
#include <vector>

[[nodiscard]] inline krLinear::Vector vectorAt(const std::vector<float>& values, std::size_t vertex)
{
    const float* value = values.data() + 3 * vertex;
    return {value[0], value[1], value[2]};
}

inline void setVector(std::vector<float>& values, std::size_t vertex, const krLinear::Vector& vector)
{
    values[3 * vertex] = static_cast<float>(vector.x);
    values[3 * vertex + 1] = static_cast<float>(vector.y);
    values[3 * vertex + 2] = static_cast<float>(vector.z);
}

/// The direction that a triangle faces; the null vector for one without an area.
[[nodiscard]] krLinear::Vector triangleNormal(const PartArrays& part, std::span<const unsigned> corners);

/// The angle of a triangle at one of its corners, radians.
/// @param corner  index into the part's triangles
[[nodiscard]] double cornerAngle(const PartArrays& part, std::size_t corner);

/// The other two corners of the triangle of a corner, in its order.
[[nodiscard]] constexpr std::array<std::size_t, 2> otherCorners(std::size_t corner) noexcept
{
    const std::size_t first = corner - corner % 3;
    return {first + (corner - first + 1) % 3, first + (corner - first + 2) % 3};
}

/// Replaces the vertices by copies of some of them.
/// @param sources  of each new vertex the old one
void takeVertices(PartArrays& part, std::span<const unsigned> sources);
