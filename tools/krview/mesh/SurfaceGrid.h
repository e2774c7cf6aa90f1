#pragma once
#include "PartArrays.h"
#include "Vector3.h"

#include <functional>
#include <vector>

/// A vertex of a shape.
struct SurfacePoint
{
    Vector3 position;
    Vector3 normal;
    float u = 0;
    float v = 0;
    Vector3 tangent; ///< where u grows
};

/// Appends a surface of columns times rows quads, cut into triangles; its edges are those of the quads. Seen from outside,
/// u grows to the right and v upwards. A side of a quad may be a single point, of which the left corner is taken.
/// @param pointAt  gives the point at a corner of quads, 0 to columns and 0 to rows
void appendGrid(PartArrays& part, unsigned columns, unsigned rows,
                const std::function<SurfacePoint(unsigned column, unsigned row)>& pointAt);
