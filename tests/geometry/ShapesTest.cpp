#include "geometry/Fixtures.h"

#include "SharedObjects.h"

#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalGroup.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <fstream>
#include <memory>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

std::string namesOf(const std::vector<const GeometryData*>& streams)
{
    std::string names;
    for (const GeometryData* stream : streams)
        names += std::string(" ") + stream->streamName();
    return names;
}

/// Prints rows of values with six decimals.
template <class T>
void print(std::ostream& out, const T* values, unsigned rows, unsigned width)
{
    for (unsigned i = 0; i < rows * width; ++i)
        out << std::round(1e6 * values[i]) / 1e6 + 0.0 << (i % width == width - 1 ? '\n' : ' ');
}

/// The groups with their lists, a row for each face, then every stream once, a row for each element.
std::string text(const Geometry& geometry)
{
    std::ostringstream groups;
    std::ostringstream streams;
    std::set<const GeometryData*> printed;
    for (const auto& group : geometry.groups())
    {
        groups << "group " << group->name() << ':' << namesOf(group->data()) << '\n';
        for (const GeometryDataIndex* list : group->indices())
        {
            const unsigned corners = list->primitiveType() == GeometryDataIndex::quads ? 4 : 3;
            groups << "list of type " << list->primitiveType() << " over" << namesOf(list->data()) << '\n';
            print(groups, list->indices(), list->count() / corners, corners);
        }
        for (const GeometryData* stream : group->data())
            if (printed.insert(stream).second)
            {
                EXPECT_TRUE(stream->elementType() == GeometryData::float32 && stream->ownsData() &&
                            !stream->secondary());
                streams << "stream " << stream->streamName() << ": type " << stream->dataType() << ", set "
                        << stream->setIndex << ", " << stream->count() << " x " << stream->elementSize() << '\n';
                print(streams, static_cast<const float*>(stream->data()), stream->count(), stream->elementSize());
            }
    }
    return groups.str() + streams.str();
}

} // namespace

// Every value and index of a shape stands in golden/NAME.txt.
TEST(Shapes, AreTheGoldenOnesWhateverTheArguments)
{
    const std::pair<std::string, void (Geometry::*)(float, float, float, float)> shapes[] = {
        {"cube", &Geometry::createCube}, {"cylinder", &Geometry::createCylinder}, {"sphere", &Geometry::createSphere}};
    for (const auto& [name, create] : shapes)
    {
        const Held<Geometry> geometry(new Geometry);
        (geometry.get()->*create)(-7.0f, 0.0f, 1000.0f, NAN);
        std::ifstream golden(KRENDER_GOLDENS "/" + name + ".txt");
        std::istringstream shape(text(*geometry));
        std::string expected;
        std::string actual;
        for (int line = 1; std::getline(golden, expected); ++line)
            ASSERT_TRUE(std::getline(shape, actual) && actual == expected)
                << name << ", line " << line << ": " << actual << " instead of " << expected;
        EXPECT_FALSE(std::getline(shape, actual)) << name << " has " << actual << " too much";

        const std::size_t groups = geometry->groups().size();
        (geometry.get()->*create)(1.0f, 1.0f, 1.0f, 1.0f);
        EXPECT_EQ(geometry->groups().size(), 2 * groups) << "a second call adds a second " << name;
    }
}
