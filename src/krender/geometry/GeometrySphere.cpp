#include <krender/geometry/Geometry.h>

#include "krender/geometry/private/GeometryShapes.h"

#include <krender/geometry/GeometryData.h>
#include <krender/platform/Linear.h>

#include <cmath>
#include <initializer_list>
#include <numbers>
#include <vector>

using krLinear::Point;
using krLinear::Vector;
using namespace krShapes;

namespace
{

constexpr unsigned kBands = 10;

/// A corner of the sphere with its texture coordinates.
struct Corner
{
    Point position;
    double u;
    double v;
};

/// @param latitude   in bands from the south pole
/// @param longitude  in steps from the first column, which is a step past +X
Corner corner(unsigned latitude, unsigned longitude)
{
    const double degrees = 180.0 / kBands * latitude - 90.0;
    const double angle = degrees * std::numbers::pi / 180.0;
    return {onCircle(std::cos(angle), std::sin(angle), 360.0 / kSides * (longitude + 1)),
            static_cast<double>(longitude) / kSides, static_cast<double>(latitude) / kBands};
}

constexpr Corner kSouthPole{{0.0, -1.0, 0.0}, 0.5, 0.0};
constexpr Corner kNorthPole{{0.0, 1.0, 0.0}, 0.5, 1.0};

/// The unit normal of the plane through three points, on the side from which they are counter-clockwise.
Point planeNormal(const Point& a, const Point& b, const Point& c)
{
    const Vector p(b.x - a.x, b.y - a.y, b.z - a.z);
    const Vector q(c.x - a.x, c.y - a.y, c.z - a.z);
    const Vector cross(p.y * q.z - p.z * q.y, p.z * q.x - p.x * q.z, p.x * q.y - p.y * q.x);
    const double length = cross.length();
    return {cross.x / length, cross.y / length, cross.z / length};
}

/// Collects the faces of the sphere and the values of its streams.
class Sphere
{
public:
    /// Adds a face to a surface. Deliberate: its positions are indexed the other way around than its normals and texture
    /// coordinates, clockwise when seen from outside.
    /// @param corners  three or four, counter-clockwise when seen from outside
    void addFace(Surface& surface, std::initializer_list<Corner> corners)
    {
        const auto start = fCornerCount;
        const auto size = static_cast<unsigned>(corners.size());
        fCornerCount += size;
        const Corner* c = corners.begin();
        const Point normal = planeNormal(c[0].position, c[1].position, c[size - 1].position);
        for (unsigned i = 0; i < size; ++i)
        {
            positions.add(c[i].position);
            normals.add(normal);
            textureCoords.add(c[i].u, c[i].v);
            surface.positions.push_back(start + (size - i) % size);
            surface.normals.push_back(start + i);
            surface.textureCoords.push_back(start + i);
        }
    }

    Values positions;
    Values normals;
    Values textureCoords;

private:
    unsigned fCornerCount = 0;
};

} // namespace

void Geometry::createSphere(float, float, float, float)
{
    Sphere sphere;
    Surface quads;
    for (unsigned b = 1; b + 1 < kBands; ++b)
        for (unsigned j = 0; j < kSides; ++j)
            sphere.addFace(quads, {corner(b, j), corner(b, j + 1), corner(b + 1, j + 1), corner(b + 1, j)});

    Surface triangles;
    for (unsigned j = 0; j < kSides; ++j)
        sphere.addFace(triangles, {corner(1, j + 1), corner(1, j), kSouthPole});
    for (unsigned j = 0; j < kSides; ++j)
        sphere.addFace(triangles, {corner(kBands - 1, j), corner(kBands - 1, j + 1), kNorthPole});

    appendSurfaces(*this,
                   {sphere.positions.stream("SphereVertices", GeometryData::vertex, 3),
                    sphere.normals.stream("SphereNormals", GeometryData::normal, 3),
                    sphere.textureCoords.stream("SphereTexCoords", GeometryData::textureCoord, 2)},
                   "SphereQuads", quads, "SphereTriangles", triangles);
}
