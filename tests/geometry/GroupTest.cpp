#include "geometry/Fixtures.h"

#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryCustomData.h>
#include <krender/geometry/GeometryMonitor.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace
{

class Attachment : public GeometryCustomData
{
public:
    explicit Attachment(const char* name) { setName(name); }
    [[nodiscard]] const char* kind() const override { return "attachment"; }
};

Counted<GeometryData>* newCountedStream(int& alive)
{
    return new Counted<GeometryData>(alive, "counted", GeometryData::vertex, GeometryData::float32, 1u, 2u,
                                     newArray({1.0f, 2.0f}), true, false);
}

Counted<GeometryDataIndex>* newCountedList(int& alive, const std::vector<const GeometryData*>& streams)
{
    return new Counted<GeometryDataIndex>(alive, GeometryDataIndex::points, 2u, streams, newArray({0u, 1u}), nullptr,
                                          nullptr);
}

GeometryData* newEmptyStream(GeometryData::DataType type, const char* name, int setIndex, bool secondary)
{
    auto* stream = new GeometryData(name, type, GeometryData::float32, 1, 0, nullptr, false, secondary);
    stream->setIndex = setIndex;
    return stream;
}

GeometryData* newTransparency(const char* name, std::initializer_list<std::int16_t> values)
{
    return new GeometryData(name, GeometryData::userData, GeometryData::int16, 1,
                            static_cast<unsigned int>(values.size()), newArray(values), true, false);
}

} // namespace

TEST(GeometryLogicalGroup, AdoptsOneReferenceOfEachThing)
{
    int alive = 0;
    auto* kept = newCountedStream(alive);
    auto* keptList = newCountedList(alive, {kept});
    auto* attachment = new Counted<Attachment>(alive, "a");
    kept->ref();
    keptList->ref();
    {
        GeometryLogicalGroup group("g");
        group.appendData({kept, nullptr, newCountedStream(alive)}, {keptList, nullptr, newCountedList(alive, {kept})});
        group.appendData(attachment);
        group.appendData(new Counted<Attachment>(alive, "b"));
        EXPECT_EQ(alive, 6);
        group.reset();
        EXPECT_EQ(alive, 2) << "what the caller holds lives on";
        EXPECT_TRUE(group.data().empty() && group.indices().empty() && group.customData().empty());

        kept->ref();
        const GeometryLogicalGroup copies("h", {kept, newCountedStream(alive)}, {newCountedList(alive, {kept})});
        EXPECT_EQ(alive, 4);
    }
    EXPECT_EQ(keptList->unref(), 0);
    EXPECT_EQ(kept->unref(), 0);
    EXPECT_EQ(alive, 0);
}

TEST(GeometryLogicalGroup, AppendedStreamAlsoJoinsTheFirstListOnly)
{
    GeometryLogicalGroup group(nullptr);
    GeometryData* early = newStream(GeometryData::vertex, 1, {0});
    group.appendData(early);
    group.appendData({}, {newList(GeometryDataIndex::points, 0), newList(GeometryDataIndex::points, 0)});
    EXPECT_TRUE(group.indices()[0]->data().empty()) << "there was no list when the stream came";

    GeometryData* late = newStream(GeometryData::normal, 1, {0});
    group.appendData(late);
    EXPECT_EQ(group.data(), (std::vector<const GeometryData*>{early, late}));
    EXPECT_EQ(group.indices()[0]->data(), std::vector<const GeometryData*>{late});
    EXPECT_TRUE(group.indices()[1]->data().empty());
}

TEST(GeometryLogicalGroup, FindsTheFirstMatchOfEveryKey)
{
    GeometryLogicalGroup group(nullptr);
    GeometryData* streams[] = {
        newEmptyStream(GeometryData::textureCoord, "uv", 1, true),
        newEmptyStream(GeometryData::textureCoord, "uv0", 0, false),
        newEmptyStream(GeometryData::textureCoord, "uv", 1, false),
        newEmptyStream(GeometryData::color, "uv", 1, false),
        newEmptyStream(GeometryData::textureCoord, "uv", 1, false),
    };
    group.appendData(static_cast<const GeometryData*>(nullptr));
    for (const GeometryData* stream : streams)
        group.appendData(stream);
    const auto uv = GeometryData::textureCoord;
    EXPECT_EQ(group.geometryDataPtr(uv, 1, false), streams[2]);
    EXPECT_EQ(group.geometryDataPtr(uv, 1, true), streams[0]);
    EXPECT_EQ(group.geometryDataPtr(uv, 2, false), nullptr);
    EXPECT_EQ(group.geometryDataPtr(GeometryData::color, 1, false), streams[3]);
    EXPECT_EQ(group.geometryDataPtr(uv, std::string("uv").c_str(), false), streams[2]);
    EXPECT_EQ(group.geometryDataPtr(uv, nullptr, false), streams[1]) << "a null name matches any name and set";
    EXPECT_EQ(group.geometryDataPtr(uv, "", false), nullptr);
    EXPECT_EQ(group.geometryDataPtr(uv, "uv0", true), nullptr);

    auto* first = new Attachment("tag");
    group.appendData(new Attachment("other"));
    group.appendData(first);
    group.appendData(new Attachment("tag"));
    EXPECT_EQ(group.customData("tag"), first);
    EXPECT_EQ(group.customData("none"), nullptr);
    EXPECT_FALSE(first->dirty(nullptr));
}

TEST(GeometryLogicalGroup, ResetDropsDeviceCopiesOfWhatLivesOn)
{
    int hangers = 0;
    const Held<GeometryData> stream(newStream(GeometryData::vertex, 1, {0}));
    const Held<GeometryDataIndex> list(newList(GeometryDataIndex::points, 0));
    stream->ref();
    list->ref();
    stream->setHanger(new Hanger(hangers));
    list->setHanger(new Hanger(hangers));
    GeometryLogicalGroup(nullptr, {stream.get()}, {list.get()}).reset();
    EXPECT_EQ(hangers, 0);
}

TEST(Geometry, ReusesGroupsByTextAndAppendsWithoutLooking)
{
    Geometry* geometry = new Geometry;
    EXPECT_EQ(Geometry::fsNumInstances_Geometry, 1);
    const std::string name = "part";
    const std::string sameText = name;
    GeometryLogicalGroup* named = geometry->createOrReuseLogicalGroup(name.c_str());
    GeometryLogicalGroup* unnamed = geometry->createOrReuseLogicalGroup(nullptr);
    EXPECT_NE(named, unnamed);
    EXPECT_EQ(named->name(), name.c_str()) << "the pointer is kept, not the text";
    EXPECT_EQ(geometry->createOrReuseLogicalGroup(sameText.c_str()), named);
    EXPECT_EQ(geometry->createOrReuseLogicalGroup(nullptr), unnamed);
    geometry->append("part", {}, {});
    EXPECT_EQ(geometry->groups().size(), 3u);
    EXPECT_EQ(geometry->createOrReuseLogicalGroup("part"), named);

    // A group that was taken out leaves a slot that nothing trips over.
    EXPECT_EQ(geometry->takeGroup(0).get(), named);
    EXPECT_EQ(geometry->createOrReuseLogicalGroup("part"), geometry->groups()[2].get());
    EXPECT_EQ(geometry->totalNumberOfPrimitives(), 0u);
    EXPECT_FALSE(geometry->indexTypeDiffers(GeometryDataIndex::points));
    EXPECT_FALSE(geometry->colorDataHasTransparency(0));
    EXPECT_FALSE(geometry->hasColorPerVertexMask(0));
    geometry->deleteGeometryCache(true, true);
    geometry->reset();
    EXPECT_TRUE(geometry->groups().empty());
    EXPECT_EQ(geometry->unref(), 0);
    EXPECT_EQ(Geometry::fsNumInstances_Geometry, 0);
}

TEST(Geometry, CountsWholePrimitives)
{
    struct Case
    {
        int type;
        unsigned int indices, primitives;
    };
    const Case cases[] = {{1, 7, 7}, {2, 7, 3}, {3, 7, 1}, {4, 7, 1},  {5, 7, 2},  {6, 7, 1}, {7, 7, 1},
                          {8, 7, 1}, {9, 7, 1}, {9, 0, 1}, {10, 7, 1}, {11, 7, 0}, {0, 7, 0}, {-1, 7, 0}};
    const Held<Geometry> all(new Geometry);
    unsigned int total = 0;
    for (const Case& c : cases)
    {
        const auto type = static_cast<GeometryDataIndex::DrawPrimitiveType>(c.type);
        const Held<Geometry> one(new Geometry);
        one->append("one", {}, {newList(type, c.indices)});
        EXPECT_EQ(one->totalNumberOfPrimitives(), c.primitives) << "type " << c.type;
        EXPECT_FALSE(one->indexTypeDiffers(type));
        all->append("one", {}, {newList(type, c.indices), nullptr});
        total += c.primitives;
    }
    EXPECT_EQ(all->totalNumberOfPrimitives(), total);
    EXPECT_TRUE(all->indexTypeDiffers(GeometryDataIndex::points));
}

TEST(Geometry, LastGroupDecidesOnTransparency)
{
    struct Case
    {
        const char* what;
        std::vector<GeometryData*> streams; // one a group
        bool transparent;
    };
    const char* set0 = "colorSetTransparency_0";
    const Case cases[] = {
        {"none", {}, false},
        {"one", {newTransparency(set0, {1, 0})}, true},
        {"a later group overrules", {newTransparency(set0, {1}), newTransparency(set0, {0})}, false},
        {"and the other way", {newTransparency(set0, {0}), newTransparency(set0, {2})}, true},
        {"a group without an answer does not", {newTransparency(set0, {1}), newTransparency("x", {0})}, true},
        {"negative", {newTransparency(set0, {-1})}, false},
        {"another set", {newTransparency("colorSetTransparency_1", {1})}, false},
        {"no element", {newTransparency(set0, {})}, false},
    };
    for (const Case& c : cases)
    {
        const Held<Geometry> geometry(new Geometry);
        for (const GeometryData* stream : c.streams)
            geometry->append("group", {stream}, {});
        EXPECT_EQ(geometry->colorDataHasTransparency(0), c.transparent) << c.what;
    }
    const Held<Geometry> unusual(new Geometry);
    unusual->append("group", {newTransparency("colorSetTransparency_-1", {1})}, {});
    EXPECT_TRUE(unusual->colorDataHasTransparency(std::numeric_limits<unsigned int>::max())) << "sets print as signed";
}

TEST(Geometry, FindsMasksAndCorrectionsOfTheirSetInAnyGroup)
{
    const Held<Geometry> geometry(new Geometry);
    geometry->append("first", {newEmptyStream(GeometryData::colorPerVertexMask, "", 0, true)}, {});
    geometry->append("second",
                     {newEmptyStream(GeometryData::colorPerVertexMask, "", 1, false),
                      newEmptyStream(GeometryData::tangentSpaceCorrection, "", 2, false)},
                     {});
    EXPECT_FALSE(geometry->hasColorPerVertexMask(0)) << "secondary streams are not looked at";
    EXPECT_TRUE(geometry->hasColorPerVertexMask(1));
    EXPECT_FALSE(geometry->hasTangentSpaceCorrection(1));
    EXPECT_TRUE(geometry->hasTangentSpaceCorrection(2));
}

TEST(Geometry, CacheFlushDropsTheChosenHangers)
{
    for (const bool data : {false, true})
        for (const bool indices : {false, true})
        {
            int streamHangers = 0;
            int listHangers = 0;
            const Held<Geometry> geometry(new Geometry);
            for (int group = 0; group < 2; ++group)
            {
                GeometryData* stream = newStream(GeometryData::vertex, 1, {0});
                GeometryDataIndex* list = newList(GeometryDataIndex::points, 0, {stream});
                stream->setHanger(new Hanger(streamHangers));
                list->setHanger(new Hanger(listHangers));
                geometry->append("group", {stream, nullptr}, {list, nullptr});
            }
            geometry->deleteGeometryCache(data, indices);
            EXPECT_EQ(streamHangers, data ? 0 : 2);
            EXPECT_EQ(listHangers, indices ? 0 : 2);
        }
}

TEST(GeometryMonitor, FirstStreamAfterAMarkStillCountsAsClean)
{
    // The last start makes the generator wrap between the streams.
    for (const std::uint32_t start : {100u, 0x7FFFFFFEu, 0xFFFFFFFDu})
    {
        const IdGenerator generator(start);
        const GeometryMonitor monitor;
        const GeometryMonitor other;
        GeometryLogicalGroup group(nullptr);
        const Held<GeometryData> before(newStream(GeometryData::vertex, 1, {0}));
        EXPECT_TRUE(monitor.isDirty(*before, group));
        monitor.markClean(group);
        const Held<GeometryData> first(newStream(GeometryData::vertex, 1, {0}));
        const Held<GeometryData> second(newStream(GeometryData::vertex, 1, {0}));
        const Held<GeometryData> third(newStream(GeometryData::vertex, 1, {0}));
        EXPECT_FALSE(monitor.isDirty(*before, group));
        EXPECT_FALSE(monitor.isDirty(*first, group));
        EXPECT_TRUE(monitor.isDirty(*second, group));
        EXPECT_TRUE(monitor.isDirty(*third, group)) << "also past the wrap";

        EXPECT_TRUE(other.isDirty(*before, group)) << "monitors have marks of their own";
        other.markClean(group);
        EXPECT_FALSE(other.isDirty(*third, group));
        EXPECT_TRUE(monitor.isDirty(*third, group));
        monitor.markClean(group);
        EXPECT_FALSE(monitor.isDirty(*third, group)) << "a mark moves on";

        group.reset();
        EXPECT_TRUE(monitor.isDirty(*before, group)) << "a group that was emptied is unknown again";
    }
}

TEST(GeometryMonitor, FirstMonitorHasTheIdZeroAndWorksLikeOthers)
{
    const std::uint32_t before = std::exchange(GeometryMonitor::gNextFreeId, 0u);
    const GeometryMonitor first;
    const GeometryMonitor second;
    GeometryMonitor::gNextFreeId = before;
    EXPECT_EQ(first.id(), 0u);
    EXPECT_EQ(second.id(), 1u);

    GeometryLogicalGroup group(nullptr);
    second.markClean(group);
    EXPECT_EQ(group.monitorRegistry().lastUpdateId(first), 0u);
    first.markClean(group);
    EXPECT_EQ(group.monitorRegistry().lastUpdateId(first), IResource::fsUniqueIDGenerator);
}
