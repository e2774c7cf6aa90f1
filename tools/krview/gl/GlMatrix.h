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

/// The rows of the matrix that does the same to column vectors, as GlUniforms::set() takes it.
[[nodiscard]] inline std::array<double, 16> rowsOf(const krLinear::ProjMatrix& matrix)
{
    std::array<double, 16> rows{};
    for (unsigned i = 0; i < rows.size(); ++i)
        rows[i] = matrix(i % 4, i / 4);
    return rows;
}
