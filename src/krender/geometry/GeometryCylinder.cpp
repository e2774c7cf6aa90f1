#include <krender/geometry/Geometry.h>

#include "krender/geometry/private/GeometryShapes.h"

#include <krender/geometry/GeometryData.h>

#include <array>
#include <numbers>

using namespace krShapes;

void Geometry::createCylinder(float, float, float, float)
{
    // Where the parts of the streams start. A ring of texture coordinates has one entry more than a ring of positions, for
    // both ends of the seam.
    constexpr unsigned kTop = kSides;
    constexpr unsigned kBottomCenter = 2 * kSides;
    constexpr unsigned kTopCenter = kBottomCenter + 1;
    constexpr unsigned kBottomNormals = 4 * kSides;
    constexpr unsigned kTopNormals = kBottomNormals + kSides + 1;
    constexpr unsigned kBottomTexture = 1;
    constexpr unsigned kTopTexture = kBottomTexture + kSides + 1;
    constexpr unsigned kTopCenterTexture = kTopTexture + kSides + 1;
    constexpr double kStep = 360.0 / kSides;

    Values positions;
    for (const double y : {-1.0, 1.0})
        for (unsigned k = 0; k < kSides; ++k)
            positions.add(onCircle(1.0, y, kStep * (k + 1)));
    positions.add(0.0, -1.0, 0.0);
    positions.add(0.0, 1.0, 0.0);

    Values normals;
    for (unsigned k = 0; k < kSides; ++k)
        for (unsigned corner = 0; corner < 4; ++corner)
            normals.add(onCircle(1.0, 0.0, kStep * (k + 1.5)));
    for (const double y : {-1.0, 1.0})
        for (unsigned corner = 0; corner <= kSides; ++corner)
            normals.add(0.0, y, 0.0);

    // v is the distance along the profile from the centre of the bottom cap, in units of the circumference.
    const auto v = [](double distance) { return distance / (2.0 * std::numbers::pi); };
    Values textureCoords;
    textureCoords.add(0.5, v(0.0));
    for (const double distance : {1.0, 3.0})
        for (unsigned i = 0; i <= kSides; ++i)
            textureCoords.add(static_cast<double>(i) / kSides, v(distance));
    textureCoords.add(0.5, v(4.0));

    Surface quads;
    for (unsigned k = 0; k < kSides; ++k)
    {
        const unsigned next = (k + 1) % kSides;
        const unsigned texture = kBottomTexture + k;
        addFace(quads.positions, {k, kTop + k, kTop + next, next});
        addFace(quads.normals, {4 * k, 4 * k + 1, 4 * k + 2, 4 * k + 3});
        // Deliberate: the texture corners go along the ring first, the position corners up the side first.
        addFace(quads.textureCoords, {texture, texture + 1, kTopTexture + k + 1, kTopTexture + k});
    }

    // A cap's normals are all equal; that at kCenter is used for the centre, the others for the ring, in these orders.
    constexpr unsigned kCenter = 2;
    constexpr std::array<unsigned, kSides> kBottomOrder{1, 0, 3, 4, 5, 6, 7, 8, 9, 10};
    constexpr std::array<unsigned, kSides> kTopOrder{0, 1, 3, 4, 5, 6, 7, 8, 9, 10};
    Surface triangles;
    for (unsigned k = 0; k < kSides; ++k)
    {
        const unsigned next = (k + 1) % kSides;
        addFace(triangles.positions, {next, kBottomCenter, k});
        addFace(triangles.normals,
                {kBottomNormals + kBottomOrder[next], kBottomNormals + kBottomOrder[k], kBottomNormals + kCenter});
        addFace(triangles.textureCoords, {kBottomTexture + k + 1, kBottomTexture + k, 0});
    }
    for (unsigned k = 0; k < kSides; ++k)
    {
        const unsigned next = (k + 1) % kSides;
        addFace(triangles.positions, {kTop + k, kTopCenter, kTop + next});
        addFace(triangles.normals, {kTopNormals + kTopOrder[k], kTopNormals + kTopOrder[next], kTopNormals + kCenter});
        addFace(triangles.textureCoords, {kTopTexture + k, kTopTexture + k + 1, kTopCenterTexture});
    }

    appendSurfaces(*this,
                   {positions.stream("CylinderVertices", GeometryData::vertex, 3),
                    normals.stream("CylinderNormals", GeometryData::normal, 3),
                    textureCoords.stream("CylinderTexCoords", GeometryData::textureCoord, 2)},
                   "CylinderQuads", quads, "CylinderTriangles", triangles);
}
