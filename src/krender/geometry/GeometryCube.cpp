#include <krender/geometry/Geometry.h>

#include "krender/geometry/private/GeometryShapes.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>

#include <numbers>

using namespace krShapes;

void Geometry::createCube(float, float, float, float)
{
    Values positions;
    Values normals;
    Values colors;
    Values textureCoords;
    Values tangents;
    for (unsigned i = 0; i < 8; ++i)
    {
        // The corners go around the square at each z. Deliberate: the colours are the bits of the number instead, so they
        // differ from the positions at four corners.
        const double x = (i + 1) >> 1 & 1;
        const double y = i >> 1 & 1;
        const double z = i >> 2;
        const auto outward = [](double coordinate) { return (2.0 * coordinate - 1.0) * std::numbers::inv_sqrt3; };
        positions.add(x, y, z);
        normals.add(outward(x), outward(y), outward(z));
        colors.add(i & 1, i >> 1 & 1, i >> 2, 1.0);
        textureCoords.add(1.0 - y, x);
        tangents.add(1.0, 0.0, 0.0);
    }
    const Streams streams{
        positions.stream("CubeVertices", GeometryData::vertex, 3),
        normals.stream("CubeNormals", GeometryData::normal, 3),
        colors.stream("CubeVertexColors", GeometryData::color, 4),
        textureCoords.stream("CubeTexCoords1", GeometryData::textureCoord, 2, 0),
        textureCoords.stream("CubeTexCoords2", GeometryData::textureCoord, 2, 1),
        tangents.stream("CubeTangents1", GeometryData::tangent, 3, 0),
        tangents.stream("CubeTangents2", GeometryData::tangent, 3, 1),
    };
    appendGroup(*this, "Cube", streams,
                {indexList(GeometryDataIndex::quads, streams,
                           {4, 5, 6, 7, 2, 3, 7, 6, 0, 4, 7, 3, 0, 1, 5, 4, 2, 6, 5, 1, 0, 3, 2, 1})});
}
