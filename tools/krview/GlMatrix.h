#pragma once
#include <krender/platform/Linear.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>

/// A matrix as OpenGL's uniforms take it. The library multiplies row vectors and stores rows; OpenGL multiplies column
/// vectors and stores columns. The memory is the same.
[[nodiscard]] inline std::array<GLfloat, 16> asFloats(const krLinear::ProjMatrix& matrix)
{
    std::array<GLfloat, 16> floats{};
    std::transform(matrix.elements(), matrix.elements() + floats.size(), floats.begin(),
                   [](double element) { return static_cast<GLfloat>(element); });
    return floats;
}
