#include "Shapes.h"

#include "MeshBuilder.h"
#include "PartArrays.h"
#include "Profile.h"
#include "ShaderBall.h"
#include "ShapeJoiner.h"
#include "Streams.h"
#include "SurfaceGrid.h"
#include "Vector3.h"

#include <krender/geometry/GeometryDataIndex.h>

#include <algorithm>
#include <array>
#include <numbers>
#include <utility>
#include <vector>

namespace
{

constexpr float kPi = std::numbers::pi_v<float>;

/// One of the library's own shapes.
std::unique_ptr<Mesh> libraryShape(Shape shape, void (Geometry::*create)(float, float, float, float), bool isSmooth)
{
    Geometry library;
    (library.*create)(1, 1, 1, 1);
    auto mesh = std::make_unique<Mesh>();
    joinShape(library, isSmooth, mesh->geometry);
    mesh->parts.push_back({shapeName(shape)});
    mesh->bounds = findList({mesh->geometry.groups().front().get()}, GeometryDataIndex::triangles)->boundingBox();
    return mesh;
}

/// Appends a square of side 2 with texture coordinates from 0 to 1.
/// @param right, up  unit vectors in its plane, as seen from outside
/// @param distance   from the origin
void appendSquare(PartArrays& part, const Vector3& right, const Vector3& up, float distance)
{
    const Vector3 normal = cross(right, up);
    appendGrid(part, 1, 1,
               [&](unsigned column, unsigned row)
               {
                   const auto u = static_cast<float>(column);
                   const auto v = static_cast<float>(row);
                   return SurfacePoint{right * (2 * u - 1) + up * (2 * v - 1) + normal * distance, normal, u, v, right};
               });
}

PartArrays box()
{
    constexpr std::array<std::pair<Vector3, Vector3>, 6> kSides{{
        {{1, 0, 0}, {0, 1, 0}},  // front
        {{0, 0, -1}, {0, 1, 0}}, // right
        {{-1, 0, 0}, {0, 1, 0}}, // back
        {{0, 0, 1}, {0, 1, 0}},  // left
        {{1, 0, 0}, {0, 0, -1}}, // top
        {{1, 0, 0}, {0, 0, 1}},  // bottom
    }};
    PartArrays part;
    for (const auto& [right, up] : kSides)
        appendSquare(part, right, up, 1);
    return part;
}

PartArrays plane()
{
    PartArrays part;
    appendSquare(part, {1, 0, 0}, {0, 0, -1}, 0);
    return part;
}

PartArrays revolved(const Profile& profile, unsigned fineness)
{
    PartArrays part;
    profile.revolve(part, fineness);
    return part;
}

PartArrays sphere(unsigned fineness)
{
    Profile profile(kPi);
    profile.addArc(0, 0, 1, -90, 90, std::max(2U, fineness / 2));
    return revolved(profile, fineness);
}

PartArrays cylinder(unsigned fineness)
{
    Profile profile(2 * kPi);
    profile.addLine(0, -1, 1, -1, 1);
    profile.addLine(1, -1, 1, 1, std::max(1U, fineness / 4));
    profile.addLine(1, 1, 0, 1, 1);
    return revolved(profile, fineness);
}

PartArrays torus(unsigned fineness)
{
    constexpr float kTube = 0.3f;
    Profile profile(2 * kPi * kTube);
    profile.addArc(1 - kTube, 0, kTube, -180, 180, std::max(3U, fineness / 2));
    return revolved(profile, fineness);
}

std::unique_ptr<Mesh> newMesh(Shape shape, PartArrays part)
{
    part.name = shapeName(shape);
    return buildMesh({std::move(part)});
}

} // namespace

std::unique_ptr<Mesh> newShape(Shape shape, bool isSmooth, unsigned fineness)
{
    switch (shape)
    {
    case Shape::Cube:
        return libraryShape(shape, &Geometry::createCube, isSmooth);
    case Shape::Sphere:
        return libraryShape(shape, &Geometry::createSphere, isSmooth);
    case Shape::Cylinder:
        return libraryShape(shape, &Geometry::createCylinder, isSmooth);
    case Shape::SmoothSphere:
        return newMesh(shape, sphere(fineness));
    case Shape::SmoothCylinder:
        return newMesh(shape, cylinder(fineness));
    case Shape::Box:
        return newMesh(shape, box());
    case Shape::Plane:
        return newMesh(shape, plane());
    case Shape::Torus:
        return newMesh(shape, torus(fineness));
    case Shape::ShaderBall:
        return buildMesh(shaderBallParts(fineness));
    case Shape::Particles:
        break;
    }
    return nullptr;
}
