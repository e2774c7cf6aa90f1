#include "geometry/Fixtures.h"

#include <krender/geometry/Geometry.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <sstream>
#include <string>
#include <tuple>

using krLinear::Vector;

namespace
{

using Create = void (Geometry::*)(float, float, float, float);
using Entries = std::vector<unsigned>;

constexpr double kNear = 1e-6;

/// The components of one element; those that the stream has not are 0.
std::array<double, 4> element(const GeometryData& stream, unsigned i)
{
    std::array<double, 4> result{};
    std::copy_n(static_cast<const float*>(stream.data()) + std::size_t{stream.elementSize()} * i, stream.elementSize(),
                result.begin());
    return result;
}

Vector vector(const GeometryData& stream, unsigned i)
{
    const auto values = element(stream, i);
    return {values[0], values[1], values[2]};
}

Held<Geometry> make(Create create, float argument = 1.0f)
{
    Held<Geometry> geometry(new Geometry);
    (geometry.get()->*create)(argument, argument, argument, argument);
    return geometry;
}

/// A flat face: the corners of a position list, and the normals in the same places of their list.
struct Face
{
    std::vector<Vector> positions, normals;
};

std::vector<Face> facesOf(const Geometry& geometry)
{
    std::vector<Face> faces;
    for (const auto& group : geometry.groups())
    {
        const GeometryDataIndex& positions = *group->indices()[0];
        const GeometryDataIndex& normals = *group->indices()[group->indices().size() == 1 ? 0 : 1];
        for (unsigned i = 0; i < positions.count(); ++i)
        {
            if (i % (positions.primitiveType() == GeometryDataIndex::quads ? 4 : 3) == 0)
                faces.emplace_back();
            faces.back().positions.push_back(vector(*group->data()[0], positions.indices()[i]));
            faces.back().normals.push_back(vector(*group->data()[1], normals.indices()[i]));
        }
    }
    return faces;
}

/// Expects every edge to be run along once in each direction: the faces close and wind alike.
void expectClosed(const std::vector<Face>& faces)
{
    using Key = std::array<long, 3>;
    const auto key = [](const Vector& p) { return Key{lround(p.x * 1e5), lround(p.y * 1e5), lround(p.z * 1e5)}; };
    std::map<std::pair<Key, Key>, int> edges;
    for (const auto& [positions, normals] : faces)
        for (std::size_t i = 0; i < positions.size(); ++i)
            ++edges[{key(positions[i]), key(positions[(i + 1) % positions.size()])}];
    for (const auto& [edge, times] : edges)
        EXPECT_TRUE(times == 1 && edges.count({edge.second, edge.first}));
}

} // namespace

TEST(Shapes, HoldTheirStreamsInEveryGroup)
{
    // The primitives of all lists; the groups; name, type, set, components and count of the streams.
    const std::tuple<Create, unsigned, std::string, std::string> cases[] = {
        {&Geometry::createCube, 6, "Cube,",
         "CubeVertices 1 0 3 8,CubeNormals 2 0 3 8,CubeVertexColors 4 0 4 8,CubeTexCoords1 3 0 2 8,"
         "CubeTexCoords2 3 1 2 8,CubeTangents1 7 0 3 8,CubeTangents2 7 1 3 8,"},
        {&Geometry::createCylinder, 90, "CylinderQuads,CylinderTriangles,",
         "CylinderVertices 1 0 3 22,CylinderNormals 2 0 3 62,CylinderTexCoords 3 0 2 24,"},
        {&Geometry::createSphere, 300, "SphereQuads,SphereTriangles,",
         "SphereVertices 1 0 3 380,SphereNormals 2 0 3 380,SphereTexCoords 3 0 2 380,"}};
    for (const auto& [create, primitives, groups, streams] : cases)
    {
        const auto geometry = make(create);
        std::ostringstream names;
        for (const auto& group : geometry->groups())
        {
            names << group->name() << ',';
            std::ostringstream found;
            for (const GeometryData* s : group->data())
                found << s->streamName() << ' ' << s->dataType() << ' ' << s->setIndex << ' ' << s->elementSize() << ' '
                      << s->count() << ',';
            EXPECT_EQ(found.str(), streams);
            for (std::size_t i = 0; i < group->indices().size(); ++i)
                EXPECT_EQ(group->indices()[i]->data(),
                          group->indices().size() == 1 ? group->data() : std::vector{group->data()[i]});
        }
        EXPECT_EQ(names.str(), groups);
        EXPECT_EQ(geometry->totalNumberOfPrimitives(), primitives);
        (geometry.get()->*create)(-1, 0, 5, 1000);
        EXPECT_EQ(geometry->totalNumberOfPrimitives(), 2 * primitives) << "a second call adds";
    }
}

TEST(Shapes, CloseAndWindAsTheirNormalsSayWhateverTheArguments)
{
    // The cosine between a normal and the side from which the positions go around counter-clockwise.
    const std::pair<Create, double> cases[] = {{&Geometry::createCube, 1.0 / std::numbers::sqrt3},
                                               {&Geometry::createCylinder, -1.0},
                                               {&Geometry::createSphere, -1.0}};
    for (const auto& [create, cosine] : cases)
    {
        const auto faces = facesOf(*make(create, -7.0f));
        expectClosed(faces);
        for (const auto& [corners, normals] : faces)
            for (const Vector& normal : normals)
            {
                const Vector doubleArea = cross(corners[2] - corners[0], corners.back() - corners[1]);
                EXPECT_NEAR(normal.length(), 1.0, kNear);
                EXPECT_NEAR(dot(normal, doubleArea), cosine * doubleArea.length(), kNear);
            }
    }
}

// What the properties leave open: where rings and faces start, and how the lists of one face differ.
TEST(Shapes, ListsRunInTheirOwnOrders)
{
    const std::tuple<Create, std::size_t, std::size_t, std::size_t, Entries> cases[] = {
        {&Geometry::createCube, 0, 0, 4, {2, 3, 7, 6, 0, 4, 7, 3}},
        {&Geometry::createCylinder, 0, 0, 32, {8, 18, 19, 9, 9, 19, 10, 0}},
        {&Geometry::createCylinder, 0, 2, 36, {10, 11, 22, 21}},
        {&Geometry::createCylinder, 1, 0, 24, {9, 20, 8, 0, 20, 9, 10, 21, 11}},
        {&Geometry::createCylinder, 1, 1, 24, {50, 49, 42, 41, 50, 42, 51, 52, 53, 52, 54, 53}},
        {&Geometry::createCylinder, 1, 2, 27, {11, 10, 0, 12, 13, 23}},
        {&Geometry::createSphere, 0, 0, 316, {316, 319, 318, 317}},
        {&Geometry::createSphere, 1, 0, 57, {377, 379, 378}},
    };
    for (const auto& [create, group, list, start, entries] : cases)
    {
        const auto geometry = make(create);
        const unsigned* first = geometry->groups()[group]->indices()[list]->indices() + start;
        EXPECT_EQ(Entries(first, first + entries.size()), entries) << "list " << list << " of group " << group;
    }
}

TEST(Shapes, FlatStreamsFollowTheirCorners)
{
    const auto cube = make(&Geometry::createCube);
    const auto& streams = cube->groups()[0]->data();
    using Values = std::array<double, 4>;
    for (unsigned i = 0; i < 8; ++i)
    {
        const Vector position = vector(*streams[0], i);
        EXPECT_GT(dot(vector(*streams[1], i), position - Vector(0.5, 0.5, 0.5)), 0.86) << "normals look outwards";
        EXPECT_EQ(element(*streams[2], i), (Values{double(i & 1), double(i >> 1 & 1), double(i >> 2), 1}));
        EXPECT_EQ(element(*streams[3], i), (Values{1 - position.y, position.x}));
    }
    const auto cylinder = make(&Geometry::createCylinder);
    const GeometryData& textureCoords = *cylinder->groups()[0]->data()[2];
    for (unsigned i = 1; i < 23; ++i)
        EXPECT_NEAR(element(textureCoords, i)[0], (i - 1) % 11 / 10.0, kNear);
    for (const auto& [i, distance] : {std::pair(0u, 0.0), {1u, 1.0}, {11u, 1.0}, {12u, 3.0}, {23u, 4.0}})
        EXPECT_NEAR(element(textureCoords, i)[1] * 2.0 * std::numbers::pi, distance, kNear);
}

TEST(Shapes, SphereCornersLieWhereTheirTextureCoordinatesSay)
{
    const auto sphere = make(&Geometry::createSphere);
    const auto& streams = sphere->groups()[0]->data();
    for (unsigned i = 0; i < streams[0]->count(); ++i)
    {
        const auto uv = element(*streams[2], i);
        const double latitude = (uv[1] - 0.5) * std::numbers::pi;
        const double longitude = (uv[0] + 0.1) * 2.0 * std::numbers::pi; // the map starts a step past +X
        const double r = std::cos(latitude);
        const Vector expected(r * std::cos(longitude), std::sin(latitude), -r * std::sin(longitude));
        EXPECT_NEAR((vector(*streams[0], i) - expected).length(), 0.0, kNear);
    }
    // Faces go from south to north and eastwards, from their south-western corners; poles come last, in mid-texture.
    for (const auto& [i, u, v] :
         {std::tuple(0u, 0.0, 0.1), {1u, 0.1, 0.1}, {42u, 0.1, 0.3}, {320u, 0.1, 0.1}, {379u, 0.5, 1.0}})
        EXPECT_NEAR(std::hypot(element(*streams[2], i)[0] - u, element(*streams[2], i)[1] - v), 0.0, kNear) << i;
}
