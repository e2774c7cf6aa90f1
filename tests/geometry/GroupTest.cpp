#include "geometry/Fixtures.h"

#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryCustomData.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

class Attachment : public GeometryCustomData
{
public:
    explicit Attachment(const char* name) { setName(name); }
    [[nodiscard]] const char* kind() const override { return "attachment"; }
};

GeometryData* newEmpty(GeometryData::DataType type, const char* name, int setIndex, bool secondary)
{
    auto* stream = new GeometryData(name, type, GeometryData::float32, 1, 0, nullptr, false, secondary);
    stream->setIndex = setIndex;
    return stream;
}

GeometryData* newTransparency(const char* name, std::initializer_list<std::int16_t> values)
{
    return new GeometryData(name, GeometryData::userData, GeometryData::int16, 1, static_cast<unsigned>(values.size()),
                            newArray(values), true, false);
}

} // namespace

TEST(GeometryLogicalGroup, AdoptsOneReferenceOfEachThing)
{
    int alive = 0;
    const auto newCountedStream = [&alive]
    {
        return new Counted<GeometryData>(alive, "", GeometryData::vertex, GeometryData::float32, 1u, 2u,
                                         newArray({1.0f, 2.0f}), true, false);
    };
    const auto newCountedList = [&alive](const GeometryData* stream)
    {
        return new Counted<GeometryDataIndex>(alive, GeometryDataIndex::points, 2u, std::vector{stream},
                                              newArray({0u, 1u}), nullptr, nullptr);
    };
    int hangers = 0;
    const Held<GeometryData> kept(newCountedStream());
    const Held<GeometryDataIndex> keptList(newCountedList(kept.get()));
    kept->ref();
    keptList->ref();
    {
        GeometryLogicalGroup group("g");
        group.appendData({kept.get(), nullptr, newCountedStream()},
                         {keptList.get(), nullptr, newCountedList(kept.get())});
        group.appendData(new Counted<Attachment>(alive, "a"));
        EXPECT_EQ(alive, 5);
        kept->setHanger(new Hanger(hangers));
        keptList->setHanger(new Hanger(hangers));
        group.reset();
        EXPECT_EQ(alive, 2) << "what the caller holds lives on";
        EXPECT_EQ(hangers, 0) << "without device copies";
        EXPECT_TRUE(group.data().empty() && group.indices().empty() && group.customData().empty());

        kept->ref();
        const GeometryLogicalGroup copies("h", {kept.get(), newCountedStream()}, {newCountedList(kept.get())});
        EXPECT_EQ(alive, 4);
    }
    EXPECT_EQ(alive, 2);
}

TEST(GeometryLogicalGroup, AppendedStreamAlsoJoinsTheFirstListOnly)
{
    GeometryLogicalGroup group(nullptr);
    const GeometryData* early = newStream(GeometryData::vertex, 1, {0});
    const GeometryData* late = newStream(GeometryData::normal, 1, {0});
    group.appendData(early);
    group.appendData({}, {newList(GeometryDataIndex::points, 0), newList(GeometryDataIndex::points, 0)});
    group.appendData(late);
    EXPECT_EQ(group.data(), (std::vector{early, late}));
    EXPECT_EQ(group.indices()[0]->data(), std::vector{late}) << "there was no list when the other one came";
    EXPECT_TRUE(group.indices()[1]->data().empty());

    // What is in the group already may be appended again, with a reference more.
    for (const GeometryData* stream : group.data())
        stream->ref();
    for (const GeometryDataIndex* list : group.indices())
        list->ref();
    const auto lists = group.indices();
    group.appendData(group.data(), group.indices());
    EXPECT_EQ(group.data(), (std::vector{early, late, early, late}));
    EXPECT_EQ(group.indices(), (std::vector{lists[0], lists[1], lists[0], lists[1]}));
    const GeometryData* last = newStream(GeometryData::color, 1, {0});
    const GeometryDataIndex* lastList = newList(GeometryDataIndex::lines, 0);
    group.appendData({last}, {lastList});
    EXPECT_EQ(group.data().back(), last);
    EXPECT_EQ(group.indices().back(), lastList);
}

TEST(GeometryLogicalGroup, FindsTheFirstMatchOfEveryKey)
{
    const auto uv = GeometryData::textureCoord;
    const GeometryData* streams[] = {newEmpty(uv, "uv", 1, true), newEmpty(uv, "uv0", 0, false),
                                     newEmpty(uv, "uv", 1, false), newEmpty(GeometryData::color, "uv", 1, false),
                                     newEmpty(uv, "uv", 1, false)};
    GeometryLogicalGroup group(nullptr, {nullptr}, {});
    for (const GeometryData* stream : streams)
        group.appendData(stream);
    EXPECT_EQ(group.geometryDataPtr(uv, 1, false), streams[2]);
    EXPECT_EQ(group.geometryDataPtr(uv, 1, true), streams[0]);
    EXPECT_EQ(group.geometryDataPtr(uv, 2, false), nullptr);
    EXPECT_EQ(group.geometryDataPtr(GeometryData::color, 1, false), streams[3]);
    EXPECT_EQ(group.geometryDataPtr(uv, std::string("uv").c_str(), false), streams[2]);
    EXPECT_EQ(group.geometryDataPtr(uv, nullptr, false), streams[1]) << "a null name matches any name and set";
    EXPECT_EQ(group.geometryDataPtr(uv, "uv0", true), nullptr);

    auto* tag = new Attachment("tag");
    for (Attachment* attachment : {new Attachment("other"), tag, new Attachment("tag")})
        group.appendData(attachment);
    EXPECT_EQ(group.customData(std::string("tag").c_str()), tag);
    EXPECT_TRUE(!group.customData("none") && !group.customData(nullptr));
    EXPECT_FALSE(tag->dirty(nullptr));
}

TEST(Geometry, ReusesGroupsByTextAndAppendsWithoutLooking)
{
    Geometry* geometry = new Geometry;
    EXPECT_EQ(Geometry::fsNumInstances_Geometry, 1);
    const std::string name = "part";
    const GeometryLogicalGroup* unnamed = geometry->createOrReuseLogicalGroup(nullptr);
    const GeometryLogicalGroup* named = geometry->createOrReuseLogicalGroup(name.c_str());
    EXPECT_NE(named, unnamed);
    EXPECT_EQ(named->name(), name.c_str()) << "the pointer is kept, not the text";
    EXPECT_EQ(geometry->createOrReuseLogicalGroup(std::string(name).c_str()), named);
    EXPECT_EQ(geometry->createOrReuseLogicalGroup(nullptr), unnamed);
    geometry->append("part", {}, {});
    EXPECT_EQ(geometry->groups().size(), 3u);
    EXPECT_EQ(geometry->createOrReuseLogicalGroup("part"), named);

    // A group that was taken out leaves a slot that nothing trips over.
    EXPECT_EQ(geometry->takeGroup(1).get(), named);
    EXPECT_TRUE(!geometry->takeGroup(1) && !geometry->takeGroup(3)) << "an empty slot, and one past the end";
    EXPECT_EQ(geometry->createOrReuseLogicalGroup("part"), geometry->groups()[2].get());
    EXPECT_EQ(geometry->totalNumberOfPrimitives(), 0u);
    geometry->deleteGeometryCache(true, true);
    geometry->reset();
    EXPECT_TRUE(geometry->groups().empty());
    EXPECT_EQ(geometry->unref(), 0);
    EXPECT_EQ(Geometry::fsNumInstances_Geometry, 0);
}

TEST(Geometry, CountsWholePrimitives)
{
    // Primitive type, indices, primitives.
    const std::tuple<int, unsigned, unsigned> cases[] = {{1, 7, 7},  {2, 7, 3},  {3, 7, 1}, {4, 7, 1}, {5, 7, 2},
                                                         {6, 7, 1},  {7, 7, 1},  {8, 7, 1}, {9, 7, 1}, {9, 0, 1},
                                                         {10, 7, 1}, {11, 7, 0}, {0, 7, 0}, {-1, 7, 0}};
    for (const auto& [number, indices, primitives] : cases)
    {
        const auto type = static_cast<GeometryDataIndex::DrawPrimitiveType>(number);
        const Held<Geometry> geometry(new Geometry);
        geometry->append("one", {}, {newList(type, indices)});
        EXPECT_EQ(geometry->totalNumberOfPrimitives(), primitives) << "type " << number;
        EXPECT_FALSE(geometry->indexTypeDiffers(type));
        geometry->append("two", {}, {nullptr, newList(GeometryDataIndex::triangles, 6)});
        EXPECT_EQ(geometry->totalNumberOfPrimitives(), primitives + 2);
        EXPECT_EQ(geometry->indexTypeDiffers(type), type != GeometryDataIndex::triangles);
    }
}

TEST(Geometry, LastGroupDecidesOnTransparency)
{
    const char* set0 = "colorSetTransparency_0";
    const std::tuple<const char*, std::vector<GeometryData*>, bool> cases[] = {
        {"none", {}, false},
        {"one", {newTransparency(set0, {1, 0})}, true},
        {"a later group overrules", {newTransparency(set0, {1}), newTransparency(set0, {0})}, false},
        {"and the other way", {newTransparency(set0, {0}), newTransparency(set0, {2})}, true},
        {"a group without an answer does not",
         {newTransparency(set0, {1}), newTransparency("colorSetTransparency_1", {0})},
         true},
        {"negative", {newTransparency(set0, {-1})}, false},
        {"no element", {newTransparency(set0, {})}, false},
    };
    for (const auto& [what, streams, transparent] : cases)
    {
        const Held<Geometry> geometry(new Geometry);
        for (const GeometryData* stream : streams)
            geometry->append("group", {stream}, {});
        EXPECT_EQ(geometry->colorDataHasTransparency(0), transparent) << what;
    }
}

TEST(Geometry, FindsMasksAndCorrectionsOfTheirSetInAnyGroup)
{
    const Held<Geometry> geometry(new Geometry);
    geometry->append("first", {newEmpty(GeometryData::colorPerVertexMask, "", 0, true)}, {});
    geometry->append("second", {newEmpty(GeometryData::colorPerVertexMask, "", 1, false)}, {});
    geometry->append("third", {newEmpty(GeometryData::tangentSpaceCorrection, "", 2, false)}, {});
    for (const unsigned set : {0u, 1u, 2u}) // that of set 0 is secondary and not looked at
        EXPECT_TRUE(geometry->hasColorPerVertexMask(set) == (set == 1) &&
                    geometry->hasTangentSpaceCorrection(set) == (set == 2));
}

TEST(Geometry, CacheFlushDropsTheChosenHangers)
{
    for (const auto& [data, indices] : {std::pair(false, false), {false, true}, {true, false}, {true, true}})
    {
        int streamHangers = 0;
        int listHangers = 0;
        const Held<Geometry> geometry(new Geometry);
        const GeometryData* stream = newStream(GeometryData::vertex, 1, {0});
        const GeometryDataIndex* list = newList(GeometryDataIndex::points, 0, {stream});
        stream->setHanger(new Hanger(streamHangers));
        list->setHanger(new Hanger(listHangers));
        geometry->append("group", {stream, nullptr}, {list, nullptr});
        geometry->deleteGeometryCache(data, indices);
        EXPECT_EQ(streamHangers, data ? 0 : 1);
        EXPECT_EQ(listHangers, indices ? 0 : 1);
    }
}
