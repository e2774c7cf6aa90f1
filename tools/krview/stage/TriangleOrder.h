#pragma once
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <epoxy/gl.h>

#include <vector>

/// A list of triangles that is sorted by depth for each drawing, as blending needs it.
class TriangleOrder
{
public:
    /// @param positions, triangles  of the surface; borrowed
    TriangleOrder(const GeometryData& positions, const GeometryDataIndex& triangles);
    TriangleOrder(const TriangleOrder&) = delete;
    TriangleOrder& operator=(const TriangleOrder&) = delete;
    ~TriangleOrder();

    /// Sorts the triangles by the depths of their centres, the farthest first, and binds the list.
    /// @param toEye  from the surface to the eye
    void bindSorted(const krLinear::AffineMatrix& toEye);

    /// The number of triangles.
    [[nodiscard]] unsigned count() const noexcept { return static_cast<unsigned>(fOrder.size()); }
    [[nodiscard]] krLinear::PointFlt centre(unsigned triangle) const;
    /// Appends the vertices of a triangle.
    void append(unsigned triangle, std::vector<unsigned>& indices) const;

private:
    const GeometryDataIndex& fTriangles;
    std::vector<float> fCentres; ///< three for each triangle
    std::vector<unsigned> fOrder;
    std::vector<unsigned> fSorted;
    GLuint fBuffer = 0;
};
