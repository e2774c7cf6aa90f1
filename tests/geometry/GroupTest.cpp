#include "geometry/Fixtures.h"

#include "SharedObjects.h"

#include <krender/core/IResource.h>
#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryCustomData.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalGroup.h>
#include <krender/geometry/GeometryMonitor.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
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

} // namespace

TEST(GeometryLogicalGroup, AdoptsOneReferenceOfEachThing)
{
    int hangers = 0;
    const Held<GeometryData> stream(newStream(GeometryData::vertex, 1, {0}));
    const Held<GeometryDataIndex> list(newList(GeometryDataIndex::points, 0, {stream.get()}));
    const Held<Attachment> attachment(new Attachment("a"));
    const auto expect = [&](int held)
    { EXPECT_TRUE(references(*stream) == held && references(*list) == held && references(*attachment) == held); };
    const auto give = [&] { return stream->ref() + list->ref() + attachment->ref(); };
    give();
    {
        GeometryLogicalGroup group("g");
        group.appendData({stream.get(), nullptr}, {list.get(), nullptr});
        group.appendData(attachment.get());
        expect(2);
        stream->setHanger(new Hanger(hangers));
        list->setHanger(new Hanger(hangers));
        group.reset();
        expect(1);
        EXPECT_EQ(hangers, 0) << "device copies go, though the objects live on";
        EXPECT_TRUE(group.data().empty() && group.indices().empty() && group.customData().empty());

        give();
        GeometryLogicalGroup copies("h", {stream.get()}, {list.get()});
        copies.appendData(attachment.get());
        expect(2);
    }
    expect(1);
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
}

TEST(GeometryLogicalGroup, AppendsAtTheEndEvenWhatItHolds)
{
    const GeometryData* stream = newStream(GeometryData::vertex, 1, {0});
    const GeometryDataIndex* list = newList(GeometryDataIndex::points, 0);
    const GeometryData* last = newStream(GeometryData::color, 1, {0});
    const GeometryDataIndex* lastList = newList(GeometryDataIndex::lines, 0);
    GeometryLogicalGroup group(nullptr, {stream, nullptr}, {list, nullptr});
    stream->ref();
    list->ref();
    group.appendData(group.data(), group.indices());
    group.appendData({last}, {lastList});
    EXPECT_EQ(group.data(), (std::vector<const GeometryData*>{stream, nullptr, stream, nullptr, last}));
    EXPECT_EQ(group.indices(), (std::vector<const GeometryDataIndex*>{list, nullptr, list, nullptr, lastList}));
}

TEST(GeometryLogicalGroup, FindsTheFirstMatchOfEveryKey)
{
    const auto uv = GeometryData::textureCoord;
    const GeometryData* streams[] = {newStream(uv, 1, {}, 1, "uv", true), newStream(uv, 1, {}, 0, "uv0"),
                                     newStream(uv, 1, {}, 1, "uv"), newStream(GeometryData::color, 1, {}, 1, "uv"),
                                     newStream(uv, 1, {}, 1, "uv")};
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

TEST(GeometryMonitor, FirstStreamAfterAMarkStillCountsAsClean)
{
    const std::uint32_t generator = IResource::fsUniqueIDGenerator;
    EXPECT_EQ(std::exchange(GeometryMonitor::gNextFreeId, 0u), 0u);
    for (const std::uint32_t start : {100u, 0x7FFFFFFEu, 0xFFFFFFFDu}) // the last one wraps between the streams
    {
        IResource::fsUniqueIDGenerator = start;
        const GeometryMonitor monitor;
        const GeometryMonitor other;
        EXPECT_EQ(std::exchange(GeometryMonitor::gNextFreeId, 0u), 2u);
        EXPECT_EQ(monitor.id(), 0u) << "is an id like any other";
        GeometryLogicalGroup group(nullptr);
        std::vector<Held<GeometryData>> streams;
        // Makes streams and tells the state of all: d for dirty.
        const auto states = [&](const GeometryMonitor& asked, int more)
        {
            for (int i = 0; i < more; ++i)
                streams.emplace_back(newStream(GeometryData::vertex, 1, {}));
            std::string letters;
            for (const auto& stream : streams)
                letters += asked.isDirty(*stream, group) ? 'd' : '-';
            return letters;
        };
        EXPECT_EQ(states(monitor, 1), "d") << "there is no mark yet";
        monitor.markClean(group);
        EXPECT_EQ(states(monitor, 3), "--dd") << "also past the wrap";
        EXPECT_EQ(states(other, 0), "dddd") << "monitors have marks of their own";
        other.markClean(group);
        EXPECT_EQ(states(other, 0), "----");
        EXPECT_EQ(states(monitor, 0), "--dd");
        monitor.markClean(group);
        EXPECT_EQ(states(monitor, 2), "-----d") << "a second mark moves the first one on";
        group.reset();
        EXPECT_EQ(states(monitor, 0), "dddddd") << "a group that was emptied has no marks";
    }
    IResource::fsUniqueIDGenerator = generator;
}

TEST(Geometry, ReusesGroupsByTextAndAppendsWithoutLooking)
{
    const Held<Geometry> geometry(new Geometry);
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
}

TEST(Geometry, CountsItsLiveInstances)
{
    const Held<Geometry> first(new Geometry);
    Held<Geometry> second(new Geometry);
    EXPECT_EQ(Geometry::fsNumInstances_Geometry, 2);
    second.reset();
    EXPECT_EQ(Geometry::fsNumInstances_Geometry, 1);
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
    // A group's stream: its colour set, its values, how many of them it counts.
    using Stream = std::tuple<std::string, std::int16_t, unsigned>;
    const std::tuple<const char*, std::vector<Stream>, bool> cases[] = {
        {"none", {}, false},
        {"one", {{"0", 1, 1}}, true},
        {"a later group overrules", {{"0", 1, 1}, {"0", 0, 1}}, false},
        {"and the other way", {{"0", 0, 1}, {"0", 2, 1}}, true},
        {"a group without an answer does not", {{"0", 1, 1}, {"1", 0, 1}}, true},
        {"negative", {{"0", -1, 1}}, false},
        {"no element", {{"0", 1, 0}}, false}};
    for (const auto& [what, streams, transparent] : cases)
    {
        const Held<Geometry> geometry(new Geometry);
        for (const auto& [set, value, count] : streams)
            geometry->append("group",
                             {new GeometryData(("colorSetTransparency_" + set).c_str(), GeometryData::userData,
                                               GeometryData::int16, 1, count, newArray({value}), true, false)},
                             {});
        EXPECT_EQ(geometry->colorDataHasTransparency(0), transparent) << what;
    }
}

TEST(Geometry, FindsMasksAndCorrectionsOfTheirSetInAnyGroup)
{
    const Held<Geometry> geometry(new Geometry);
    geometry->append("first", {newStream(GeometryData::colorPerVertexMask, 1, {}, 0, "", true)}, {});
    geometry->append("second", {newStream(GeometryData::colorPerVertexMask, 1, {}, 1)}, {});
    geometry->append("third", {newStream(GeometryData::tangentSpaceCorrection, 1, {}, 2)}, {});
    for (const unsigned set : {0u, 1u, 2u}) // that of set 0 is secondary and not looked at
        EXPECT_TRUE(geometry->hasColorPerVertexMask(set) == (set == 1) &&
                    geometry->hasTangentSpaceCorrection(set) == (set == 2));
}

TEST(Geometry, CacheFlushDropsTheChosenHangers)
{
    for (const auto& [data, indices] : {std::pair(false, false), {false, true}, {true, false}, {true, true}})
    {
        int hangers = 0;
        const Held<Geometry> geometry(new Geometry);
        const GeometryData* stream = newStream(GeometryData::vertex, 1, {0});
        const GeometryDataIndex* list = newList(GeometryDataIndex::points, 0, {stream});
        stream->setHanger(new Hanger(hangers));
        list->setHanger(new Hanger(hangers));
        geometry->append("group", {stream, nullptr}, {list, nullptr});
        geometry->deleteGeometryCache(data, indices);
        EXPECT_TRUE(!stream->hanger() == data && !list->hanger() == indices && hangers == 2 - data - indices);
    }
}
