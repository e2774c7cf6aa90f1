#include "TriangleOrder.h"

#include <krender/geometry/DepthSorter.h>

#include <cstddef>

TriangleOrder::TriangleOrder(const GeometryData& positions, const GeometryDataIndex& triangles) : fTriangles(triangles)
{
    const auto* places = static_cast<const float*>(positions.data());
    const unsigned count = triangles.count() / 3;
    fCentres.reserve(std::size_t{3} * count);
    for (unsigned i = 0; i < count; ++i)
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            float sum = 0;
            for (unsigned corner = 0; corner < 3; ++corner)
                sum += places[std::size_t{3} * triangles.indices()[3 * i + corner] + axis];
            fCentres.push_back(sum / 3);
        }
    fOrder.resize(count);
    fSorted.reserve(std::size_t{3} * count);
    glGenBuffers(1, &fBuffer);
}

TriangleOrder::~TriangleOrder() { glDeleteBuffers(1, &fBuffer); }

void TriangleOrder::bindSorted(const krLinear::AffineMatrix& toEye)
{
    DepthSorter::sortByDepth(krLinear::ProjMatrix(toEye), fOrder.data(), count(), fCentres.data(), nullptr, 0);
    fSorted.clear();
    for (const unsigned triangle : fOrder)
        append(triangle, fSorted);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, fBuffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(fSorted.size() * sizeof(unsigned)), fSorted.data(),
                 GL_STREAM_DRAW);
}

krLinear::PointFlt TriangleOrder::centre(unsigned triangle) const
{
    const float* const centre = &fCentres[std::size_t{3} * triangle];
    return {centre[0], centre[1], centre[2]};
}

void TriangleOrder::append(unsigned triangle, std::vector<unsigned>& indices) const
{
    const unsigned* const corners = fTriangles.indices() + std::size_t{3} * triangle;
    indices.insert(indices.end(), corners, corners + 3);
}
