#include "SurfaceGrid.h"

#include "VertexVectors.h"

#include <cstddef>

namespace
{

void append(PartArrays& part, StreamSlot slot, const Vector3& v)
{
    part.values[slot].insert(part.values[slot].end(), {v.x, v.y, v.z});
}

constexpr double kRounding = 1e-6;

/// Whether two corners of the grid are one point but for rounding.
bool areOne(const PartArrays& part, unsigned a, unsigned b)
{
    const std::vector<float>& positions = part.values[kPositions];
    return (vectorAt(positions, a) - vectorAt(positions, b)).length() < kRounding;
}

} // namespace

void appendGrid(PartArrays& part, unsigned columns, unsigned rows,
                const std::function<SurfacePoint(unsigned column, unsigned row)>& pointAt)
{
    const auto base = static_cast<unsigned>(part.vertexCount());
    for (unsigned row = 0; row <= rows; ++row)
        for (unsigned column = 0; column <= columns; ++column)
        {
            const SurfacePoint point = pointAt(column, row);
            append(part, kPositions, point.position);
            append(part, kNormals, point.normal);
            part.values[kTextureCoords].insert(part.values[kTextureCoords].end(), {point.u, point.v});
            append(part, kTangents, point.tangent);
        }
    const auto at = [&](unsigned column, unsigned row) { return base + row * (columns + 1) + column; };
    const auto addTriangle = [&part](unsigned a, unsigned b, unsigned c) {
        part.triangles.insert(part.triangles.end(), {a, b, c});
    };
    for (unsigned row = 0; row < rows; ++row)
        for (unsigned column = 0; column < columns; ++column)
        {
            const unsigned lowLeft = at(column, row);
            const unsigned lowRight = at(column + 1, row);
            const unsigned highLeft = at(column, row + 1);
            const unsigned highRight = at(column + 1, row + 1);
            const bool isPointed = areOne(part, highLeft, highRight);
            if (!areOne(part, lowLeft, lowRight))
                addTriangle(lowLeft, lowRight, isPointed ? highLeft : highRight);
            if (!isPointed)
                addTriangle(lowLeft, highRight, highLeft);
        }
    // Where a surface closes, its last column or row lies on the first, and its edges are drawn once.
    const bool isClosedAround = areOne(part, at(0, rows / 2), at(columns, rows / 2));
    const bool isClosedAcross = areOne(part, at(0, 0), at(0, rows));
    const auto addEdge = [&part](unsigned a, unsigned b)
    {
        if (!areOne(part, a, b))
            part.edges.insert(part.edges.end(), {a, b});
    };
    for (unsigned row = 0; row <= rows; ++row)
        for (unsigned column = 0; column <= columns; ++column)
        {
            if (column < columns && !(isClosedAcross && row == rows))
                addEdge(at(column, row), at(column + 1, row));
            if (row < rows && !(isClosedAround && column == columns))
                addEdge(at(column, row), at(column, row + 1));
        }
}
