#include "geometry/Fixtures.h"

#include <krender/geometry/Geometry.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <set>
#include <string>

namespace
{

using Create = void (Geometry::*)(float, float, float, float);
using Entries = std::vector<unsigned int>;
using Point = std::array<double, 3>;

Point operator-(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
double dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double length(const Point& p) { return std::sqrt(dot(p, p)); }
Point cross(const Point& a, const Point& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

constexpr double kNear = 1e-6;

/// The components of one element; what a stream of fewer has not is 0.
std::array<double, 4> element(const GeometryData& stream, unsigned int i)
{
    const float* values = static_cast<const float*>(stream.data()) + std::size_t{stream.elementSize()} * i;
    std::array<double, 4> result{};
    std::copy_n(values, stream.elementSize(), result.begin());
    return result;
}

Point point(const GeometryData& stream, unsigned int i)
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

/// A flat face: the corners of a position list and the normals in the same places of their list.
struct Face
{
    /// Of the length of the area, on the side from which the positions go around counter-clockwise.
    [[nodiscard]] Point area() const
    {
        const std::size_t n = positions.size();
        Point result = cross(positions[1] - positions[0], positions[n - 1] - positions[0]);
        if (n == 4)
            result = cross(positions[2] - positions[0], positions[3] - positions[1]);
        return {result[0] / 2, result[1] / 2, result[2] / 2};
    }

    std::vector<Point> positions, normals;
};

/// The faces of all groups. A list addresses all streams, or there are three: of positions, normals, texture coordinates.
std::vector<Face> facesOf(const Geometry& geometry)
{
    std::vector<Face> faces;
    for (const auto& group : geometry.groups())
    {
        const auto& lists = group->indices();
        const std::size_t corners = lists[0]->primitiveType() == GeometryDataIndex::quads ? 4 : 3;
        for (std::size_t i = 0; i < lists[0]->count(); ++i)
        {
            if (i % corners == 0)
                faces.emplace_back();
            faces.back().positions.push_back(point(*group->data()[0], lists[0]->indices()[i]));
            faces.back().normals.push_back(point(*group->data()[1], lists[lists.size() == 1 ? 0 : 1]->indices()[i]));
        }
    }
    return faces;
}

/// Negative where the faces go around clockwise, seen from outside.
double volume(const std::vector<Face>& faces)
{
    double sum = 0.0;
    for (const Face& face : faces)
        sum += dot(face.positions[0], face.area()) / 3.0;
    return sum;
}

/// Expects every edge to be run along once in each direction: the faces close and wind alike.
void expectClosed(const std::vector<Face>& faces)
{
    using Key = std::array<long, 3>;
    const auto key = [](const Point& p) { return Key{lround(p[0] * 1e5), lround(p[1] * 1e5), lround(p[2] * 1e5)}; };
    std::map<std::pair<Key, Key>, int> edges;
    for (const Face& face : faces)
        for (std::size_t i = 0; i < face.positions.size(); ++i)
            ++edges[{key(face.positions[i]), key(face.positions[(i + 1) % face.positions.size()])}];
    for (const auto& [edge, times] : edges)
        EXPECT_TRUE(times == 1 && edges.count({edge.second, edge.first}));
}

/// "name type set components count"
std::string describe(const GeometryData& stream)
{
    std::string text = stream.streamName();
    for (const unsigned int number : {static_cast<unsigned int>(stream.dataType()),
                                      static_cast<unsigned int>(stream.setIndex), stream.elementSize(), stream.count()})
        text.append(" ").append(std::to_string(number));
    EXPECT_TRUE(stream.ownsData() && !stream.secondary() && stream.elementType() == GeometryData::float32) << text;
    return text;
}

} // namespace

TEST(Shapes, StreamsAreNamedTypedAndUsedToTheirEnds)
{
    struct Case
    {
        Create create;
        unsigned int primitives;
        std::vector<std::string> groups, streams;
    };
    const Case cases[] = {
        {&Geometry::createCube,
         6,
         {"Cube"},
         {"CubeVertices 1 0 3 8", "CubeNormals 2 0 3 8", "CubeVertexColors 4 0 4 8", "CubeTexCoords1 3 0 2 8",
          "CubeTexCoords2 3 1 2 8", "CubeTangents1 7 0 3 8", "CubeTangents2 7 1 3 8"}},
        {&Geometry::createCylinder,
         90,
         {"CylinderQuads", "CylinderTriangles"},
         {"CylinderVertices 1 0 3 22", "CylinderNormals 2 0 3 62", "CylinderTexCoords 3 0 2 24"}},
        {&Geometry::createSphere,
         300,
         {"SphereQuads", "SphereTriangles"},
         {"SphereVertices 1 0 3 380", "SphereNormals 2 0 3 380", "SphereTexCoords 3 0 2 380"}},
    };
    for (const Case& c : cases)
    {
        const auto geometry = make(c.create);
        EXPECT_EQ(geometry->totalNumberOfPrimitives(), c.primitives);
        std::vector<std::string> groups;
        std::map<const GeometryData*, std::set<unsigned int>> used;
        for (const auto& group : geometry->groups())
        {
            groups.emplace_back(group->name());
            std::vector<std::string> streams;
            for (const GeometryData* stream : group->data())
                streams.push_back(describe(*stream));
            EXPECT_EQ(streams, c.streams);
            for (std::size_t i = 0; i < group->indices().size(); ++i)
            {
                const GeometryDataIndex& list = *group->indices()[i];
                EXPECT_EQ(list.data(), group->indices().size() == 1 ? group->data() : std::vector{group->data()[i]});
                for (const GeometryData* stream : list.data())
                    used[stream].insert(list.indices(), list.indices() + list.count());
            }
        }
        EXPECT_EQ(groups, c.groups);
        for (const auto& [stream, entries] : used)
            EXPECT_TRUE(entries.size() == stream->count() && *entries.rbegin() == stream->count() - 1)
                << stream->streamName() << ": every element is used, and none past the end";
    }
}

TEST(Shapes, CloseAndWindAsTheirNormalsSay)
{
    const double decagon = 5.0 * std::sin(std::numbers::pi / 5.0);
    double frusta = 0.0; // between the rings of the sphere
    for (int b = -5; b < 5; ++b)
    {
        const auto angle = [](int band) { return band * std::numbers::pi / 10.0; };
        const double r = std::cos(angle(b));
        const double s = std::cos(angle(b + 1));
        frusta += decagon * (std::sin(angle(b + 1)) - std::sin(angle(b))) * (r * r + r * s + s * s) / 3.0;
    }
    struct Case
    {
        Create create;
        double volume; // with the sign of the winding
        double cosine; // between a normal and the side from which the positions go around counter-clockwise
    };
    const Case cases[] = {{&Geometry::createCube, 1.0, 1.0 / std::numbers::sqrt3},
                          {&Geometry::createCylinder, -2.0 * decagon, -1.0},
                          {&Geometry::createSphere, -frusta, -1.0}};
    for (const Case& c : cases)
    {
        const auto faces = facesOf(*make(c.create));
        expectClosed(faces);
        EXPECT_NEAR(volume(faces), c.volume, kNear);
        for (const Face& face : faces)
            for (const Point& normal : face.normals)
            {
                EXPECT_NEAR(length(normal), 1.0, kNear);
                EXPECT_NEAR(dot(normal, face.area()), c.cosine * length(face.area()), kNear);
            }
    }
    EXPECT_FALSE(make(&Geometry::createCube)->indexTypeDiffers(GeometryDataIndex::quads));
    EXPECT_TRUE(make(&Geometry::createCylinder)->indexTypeDiffers(GeometryDataIndex::quads));
}

TEST(Shapes, CubeCornersCarryTheBitsOfTheirNumberAsColour)
{
    const auto cube = make(&Geometry::createCube);
    const auto& streams = cube->groups()[0]->data();
    for (unsigned int i = 0; i < 8; ++i)
    {
        const Point position = point(*streams[0], i);
        using Values = std::array<double, 4>;
        EXPECT_EQ(element(*streams[2], i), (Values{double(i & 1), double(i >> 1 & 1), double(i >> 2), 1}));
        EXPECT_EQ(element(*streams[3], i), (Values{1 - position[1], position[0]}));
        EXPECT_EQ(element(*streams[4], i), element(*streams[3], i));
        EXPECT_EQ(element(*streams[5], i), (Values{1, 0, 0}));
        EXPECT_EQ(element(*streams[6], i), (Values{1, 0, 0}));
    }
    EXPECT_EQ(point(*streams[0], 2), (Point{1, 1, 0}));
    EXPECT_EQ(point(*streams[0], 3), (Point{0, 1, 0}));
}

// What the properties above leave open: where rings and faces start, and how the lists differ.
TEST(Shapes, ListsRunInTheirOwnOrders)
{
    struct Case
    {
        Create create;
        std::size_t group, list, start;
        Entries entries;
    };
    const Case cases[] = {
        {&Geometry::createCube, 0, 0, 4, {2, 3, 7, 6, 0, 4, 7, 3}},
        {&Geometry::createCylinder, 0, 0, 32, {8, 18, 19, 9, 9, 19, 10, 0}},
        {&Geometry::createCylinder, 0, 1, 36, {36, 37, 38, 39}},
        {&Geometry::createCylinder, 0, 2, 36, {10, 11, 22, 21}},
        {&Geometry::createCylinder, 1, 0, 24, {9, 20, 8, 0, 20, 9, 10, 21, 11}},
        {&Geometry::createCylinder, 1, 1, 0, {40, 41, 42, 43, 40, 42, 44, 43, 42}},
        {&Geometry::createCylinder, 1, 1, 24, {50, 49, 42, 41, 50, 42, 51, 52, 53, 52, 54, 53}},
        {&Geometry::createCylinder, 1, 1, 54, {60, 61, 53, 61, 51, 53}},
        {&Geometry::createCylinder, 1, 2, 27, {11, 10, 0, 12, 13, 23}},
        {&Geometry::createSphere, 0, 0, 316, {316, 319, 318, 317}},
        {&Geometry::createSphere, 0, 2, 316, {316, 317, 318, 319}},
        {&Geometry::createSphere, 1, 0, 57, {377, 379, 378}},
        {&Geometry::createSphere, 1, 1, 57, {377, 378, 379}},
    };
    for (const Case& c : cases)
    {
        const auto geometry = make(c.create);
        const unsigned int* first = geometry->groups()[c.group]->indices()[c.list]->indices() + c.start;
        EXPECT_EQ(Entries(first, first + c.entries.size()), c.entries) << "list " << c.list << " of group " << c.group;
    }
}

TEST(Shapes, RoundCornersLieWhereTheirTextureCoordinatesSay)
{
    // On the cylinder's sides the texture corners run along the bottom first, the positions upwards first.
    const auto cylinder = make(&Geometry::createCylinder);
    const GeometryLogicalGroup& sides = *cylinder->groups()[0];
    for (unsigned int i = 0; i < sides.indices()[0]->count(); ++i)
    {
        const auto uv = element(*sides.data()[2], sides.indices()[2]->indices()[i / 4 * 4 + (4 - i % 4) % 4]);
        const double angle = (uv[0] + 0.1) * 2.0 * std::numbers::pi;
        const Point expected{std::cos(angle), uv[1] * 2.0 * std::numbers::pi - 2.0, -std::sin(angle)};
        EXPECT_NEAR(length(point(*sides.data()[0], sides.indices()[0]->indices()[i]) - expected), 0.0, kNear);
    }

    const auto sphere = make(&Geometry::createSphere);
    const auto& streams = sphere->groups()[0]->data();
    for (unsigned int i = 0; i < streams[0]->count(); ++i)
    {
        const auto uv = element(*streams[2], i);
        const double latitude = (uv[1] - 0.5) * std::numbers::pi;
        const double angle = (uv[0] + 0.1) * 2.0 * std::numbers::pi;
        const double r = std::cos(latitude);
        EXPECT_NEAR(
            length(point(*streams[0], i) - Point{r * std::cos(angle), std::sin(latitude), -r * std::sin(angle)}), 0.0,
            kNear);
    }
    // Faces go from south to north and eastwards, and start in the south-west; poles come last and have u = 0.5.
    const auto textureCoords = [&](unsigned int i) { return element(*streams[2], i); };
    EXPECT_NEAR(textureCoords(0)[1], 0.1, kNear);
    EXPECT_NEAR(textureCoords(1)[0], 0.1, kNear);
    EXPECT_NEAR(textureCoords(42)[1], 0.3, kNear);
    EXPECT_NEAR(textureCoords(320)[0], 0.1, kNear);
    EXPECT_EQ(textureCoords(322)[0], 0.5);
    EXPECT_EQ(textureCoords(379)[0], 0.5);
}

TEST(Shapes, ArgumentsChangeNothingAndCallsAdd)
{
    for (const Create create : {&Geometry::createCube, &Geometry::createCylinder, &Geometry::createSphere})
    {
        const auto small = make(create, -1.0f);
        const auto large = make(create, 1000.0f);
        EXPECT_EQ(volume(facesOf(*small)), volume(facesOf(*large)));
        (small.get()->*create)(1, 1, 1, 1);
        EXPECT_EQ(small->totalNumberOfPrimitives(), 2 * large->totalNumberOfPrimitives());
    }
}

// The groups of a round shape share streams: the one that goes first must leave the other's alive.
TEST(Shapes, GroupsOfARoundShapeHoldTheirStreamsByThemselves)
{
    const auto cylinder = make(&Geometry::createCylinder);
    const auto triangles = cylinder->takeGroup(1);
    int hangers = 0;
    triangles->data()[0]->setHanger(new Hanger(hangers));
    cylinder->reset();
    EXPECT_EQ(hangers, 0);
    for (const GeometryData* stream : triangles->data())
        EXPECT_EQ(stream->ref() - stream->unref(), 1);
}
