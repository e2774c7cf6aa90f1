#include "geometry/Fixtures.h"

#include <krender/geometry/GeometryDataIterator.h>
#include <krender/geometry/GeometryLogicalGroup.h>
#include <krender/geometry/GeometryLogicalIterator.h>

#include <gtest/gtest.h>

namespace
{

/// A list of widened entries, as the iterator reads them.
GeometryDataIndex* newWideList(std::initializer_list<unsigned int> entries,
                               const std::vector<const GeometryData*>& streams)
{
    const auto count = static_cast<unsigned int>(entries.size());
    const Held<GeometryDataIndex> narrow(new GeometryDataIndex(GeometryDataIndex::points, count, newArray(entries)));
    return new GeometryDataIndex(GeometryDataIndex::points, count, streams, narrow->widenedIndices().release(), nullptr,
                                 nullptr);
}

/// A group of streams, which it adopts, under one list over all of them.
struct Walked
{
    Walked(std::initializer_list<unsigned int> entries, const std::vector<const GeometryData*>& streams)
        : group(nullptr, streams, {newWideList(entries, streams)}), list(group.indices()[0])
    {
    }

    GeometryLogicalGroup group;
    const GeometryDataIndex* list;
};

/// A stream of one-component elements 0, 1 and 2 that are told apart by a base.
GeometryData* newMarked(GeometryData::DataType type, float base, int setIndex = 0)
{
    GeometryData* stream = newStream(type, 1, {base, base + 1, base + 2});
    stream->setIndex = setIndex;
    return stream;
}

} // namespace

TEST(GeometryLogicalIterator, VisitsTheListsInOrder)
{
    GeometryLogicalGroup group(nullptr);
    group.appendData({}, {newList(GeometryDataIndex::points, 0), newList(GeometryDataIndex::lines, 0)});
    std::vector<const GeometryDataIndex*> visited;
    GeometryLogicalIterator iterator(&group);
    for (; !iterator.isDone(); iterator.next())
        visited.push_back(iterator.dataIndexPointer());
    EXPECT_EQ(visited, group.indices());
    iterator.next();
    EXPECT_TRUE(iterator.isDone()) << "there is nothing past the end";
    iterator.reset(&group);
    EXPECT_EQ(iterator.dataIndexPointer(), group.indices()[0]);
    iterator.reset(nullptr);
    EXPECT_TRUE(iterator.isDone());
    EXPECT_TRUE(GeometryLogicalIterator().isDone());
}

TEST(GeometryDataIterator, PointsAtTheElementsOfTheEntries)
{
    const Walked walked({2, 0, 1}, {newStream(GeometryData::vertex, 3, {0, 1, 2, 10, 11, 12, 20, 21, 22}),
                                    newStream(GeometryData::color, 2, {0.5f, 0, 1.5f, 0, 2.5f, 0})});
    GeometryDataIterator iterator(walked.list, nullptr);
    std::vector<float> values;
    for (; !iterator.isDone(); iterator.next())
        values.insert(values.end(), {iterator.vertex()[2], iterator.color()[0]});
    EXPECT_EQ(values, (std::vector<float>{22, 2.5f, 2, 0.5f, 12, 1.5f}));
    iterator.next();
    EXPECT_EQ(iterator.position(), 3u);
}

TEST(GeometryDataIterator, ReadsEntriesAs64BitValues)
{
    const Held<GeometryDataIndex> narrow(
        new GeometryDataIndex(GeometryDataIndex::points, 2, newArray({1u, 2u, 3u, 4u})));
    GeometryDataIterator iterator(narrow.get(), nullptr);
    EXPECT_EQ(iterator.computeIndex(1), 0x200000001u);
    iterator.next();
    EXPECT_EQ(iterator.computeIndex(2), 2 * 0x400000003u);
}

TEST(GeometryDataIterator, EndsWithItsRange)
{
    const Walked walked({0, 1, 2, 0, 1}, {});
    GeometryDataIterator iterator(walked.list, nullptr);
    const auto steps = [&iterator]
    {
        int n = 0;
        for (; !iterator.isDone(); iterator.next())
            ++n;
        return n;
    };
    EXPECT_TRUE(iterator.setRange(2, 4));
    EXPECT_EQ(iterator.position(), 0u) << "a range does not move the position";
    EXPECT_EQ(steps(), 4);
    EXPECT_FALSE(iterator.setRange(2, 6)) << "past the list's end";
    EXPECT_EQ(steps(), 1) << "the walk goes on to the list's end";
    EXPECT_TRUE(iterator.setRange(0, 5));
    iterator.reset(walked.list, nullptr);
    EXPECT_FALSE(iterator.useRange());
    EXPECT_EQ(steps(), 5);

    const Walked empty({}, {});
    iterator.reset(empty.list, nullptr);
    EXPECT_TRUE(iterator.isDone());
    iterator.reset(nullptr, nullptr);
    EXPECT_TRUE(iterator.isDone());
    EXPECT_TRUE(GeometryDataIterator().isDone());
}

TEST(GeometryDataIterator, FillsASlotForEveryKindOfStream)
{
    const Walked walked({1}, {newMarked(GeometryData::vertex, 900), newMarked(GeometryData::vertex, 100),
                              newMarked(GeometryData::normal, 200), newMarked(GeometryData::alternateNormal, 300),
                              newMarked(GeometryData::weight, 400), newMarked(GeometryData::binormal, 500),
                              newMarked(GeometryData::userData, 600), newMarked(GeometryData::color, 700),
                              newMarked(GeometryData::tangent, 800, 5),
                              newMarked(GeometryData::tangentSpaceCorrection, 999), nullptr});
    GeometryDataIterator iterator(walked.list, nullptr);
    EXPECT_EQ(*iterator.vertex(), 101) << "the later one of two";
    EXPECT_EQ(*iterator.normal(), 201);
    iterator.setUseNormal(false);
    EXPECT_EQ(*iterator.normal(), 301);
    EXPECT_EQ(*iterator.weight(), 401);
    EXPECT_EQ(*iterator.binormal(), 501);
    EXPECT_EQ(*iterator.userData(), 601);
    EXPECT_EQ(*iterator.color(), 701);
    EXPECT_EQ(*iterator.tangent(), 801);
    EXPECT_EQ(*iterator.tangent2(), 801) << "without sets a tangent serves both";
    iterator.reset(walked.list, nullptr);
    EXPECT_FALSE(iterator.useNormal()) << "a reset leaves the choice";
}

TEST(GeometryDataIterator, ChoosesSlotsByTextureSet)
{
    const Walked walked({0},
                        {newMarked(GeometryData::textureCoord, 10, 1), newMarked(GeometryData::textureCoord, 20, 0),
                         newMarked(GeometryData::tangent, 30, 0), newMarked(GeometryData::tangent, 40, 1)});
    struct Case
    {
        const char* what;
        std::vector<unsigned int> sets;
        float first, second, firstTangent, secondTangent;
    };
    const Case cases[] = {{"no sets: the last stream fills both", {}, 20, 20, 40, 40},
                          {"in order", {0, 1}, 20, 10, 30, 40},
                          {"crossed", {1, 0}, 10, 20, 40, 30},
                          {"one set for both", {1, 1}, 10, 10, 40, 40}};
    for (const Case& c : cases)
    {
        const GeometryDataIterator iterator(walked.list, c.sets.empty() ? nullptr : c.sets.data());
        EXPECT_EQ(*iterator.textureCoord(), c.first) << c.what;
        EXPECT_EQ(*iterator.textureCoord2(), c.second) << c.what;
        EXPECT_EQ(*iterator.tangent(), c.firstTangent) << c.what;
        EXPECT_EQ(*iterator.tangent2(), c.secondTangent) << c.what;
    }
}
