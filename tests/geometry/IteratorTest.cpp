#include "geometry/Fixtures.h"

#include "SharedObjects.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryDataIterator.h>
#include <krender/geometry/GeometryLogicalGroup.h>
#include <krender/geometry/GeometryLogicalIterator.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace
{

/// Streams, which it adopts, under one list of 64-bit entries, as the iterator reads them.
struct Walked
{
    Walked(std::initializer_list<unsigned> entries, const std::vector<const GeometryData*>& streams)
        : group(nullptr, streams, {})
    {
        const auto count = static_cast<unsigned>(entries.size());
        const GeometryDataIndex narrow(GeometryDataIndex::points, count, newArray(entries));
        list = new GeometryDataIndex(GeometryDataIndex::points, count, streams, narrow.widenedIndices().release(),
                                     nullptr, nullptr);
        group.appendData({}, {list});
    }

    GeometryLogicalGroup group;
    const GeometryDataIndex* list;
};

/// A stream of the elements `base` and `base` + 1.
GeometryData* newMarked(GeometryData::DataType type, float base, int setIndex = 0)
{
    return newStream(type, 1, {base, base + 1}, setIndex);
}

} // namespace

TEST(GeometryLogicalIterator, VisitsTheListsInOrder)
{
    GeometryLogicalGroup group(nullptr);
    group.appendData({}, {newList(GeometryDataIndex::points, 0), newList(GeometryDataIndex::lines, 0)});
    GeometryLogicalIterator iterator;
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_TRUE(iterator.isDone());
        iterator.reset(&group);
        for (const GeometryDataIndex* list : group.indices())
        {
            EXPECT_TRUE(iterator.dataIndexPointer() == list && !iterator.isDone());
            iterator.next();
        }
        iterator.next(); // stays at the end
    }
    iterator.reset(nullptr);
    EXPECT_TRUE(iterator.isDone() && !GeometryLogicalIterator(&group).isDone());
}

TEST(GeometryDataIterator, ReadsEntriesAs64BitValues)
{
    const Held<GeometryData> stream(newStream(GeometryData::color, 4, {}));
    const Held<GeometryDataIndex> list(new GeometryDataIndex(GeometryDataIndex::points, 2, {stream.get()},
                                                             newArray({1u, 2u, 0u, 1u << 28}), nullptr, nullptr));
    GeometryDataIterator iterator(list.get(), nullptr);
    EXPECT_EQ(iterator.computeIndex(3), 3 * 0x200000001u);
    iterator.next();
    EXPECT_EQ(iterator.computeIndex(4), std::uint64_t{1} << 62);
    EXPECT_EQ(iterator.color(), nullptr) << "its place in bytes does not fit";
}

TEST(GeometryDataIterator, EndsWithItsRange)
{
    const Held<GeometryDataIndex> list(newList(GeometryDataIndex::points, 5));
    GeometryDataIterator iterator(list.get(), nullptr);
    const auto steps = [&iterator](int n = 0)
    {
        for (; !iterator.isDone(); iterator.next())
            ++n;
        return n;
    };
    const auto range = [&iterator]
    { return std::tuple(iterator.useRange(), iterator.rangeBegin(), iterator.rangeEnd(), iterator.position()); };
    EXPECT_TRUE(iterator.setRange(2, 4));
    EXPECT_EQ(range(), std::tuple(true, 2, 4, 0));
    EXPECT_EQ(steps(), 4) << "a range does not move the position";
    EXPECT_TRUE(iterator.setRange(1, 5)) << "the list's own end";
    EXPECT_FALSE(iterator.setRange(2, 6)) << "past the list's end";
    EXPECT_EQ(range(), std::tuple(false, 1, 5, 4));
    EXPECT_EQ(steps(), 1) << "the walk goes on to the list's end";
    EXPECT_TRUE(iterator.setRange(2, 3));
    iterator.reset(list.get(), nullptr);
    EXPECT_EQ(range(), std::tuple(false, 0, 0, 0));
    EXPECT_EQ(steps(), 5) << "a reset drops the range";
    iterator.next();
    EXPECT_EQ(iterator.position(), 5u) << "next() stays at the end";
    iterator.reset(nullptr, nullptr);
    EXPECT_TRUE(iterator.isDone() && GeometryDataIterator().isDone());
}

TEST(GeometryDataIterator, FillsASlotForEveryKindOfStreamAndEmptiesThemOnReset)
{
    const Walked walked({1},
                        {newMarked(GeometryData::vertex, 900), newStream(GeometryData::vertex, 3, {1, 2, 3, 101, 5, 6}),
                         newMarked(GeometryData::normal, 200), newMarked(GeometryData::alternateNormal, 300),
                         newMarked(GeometryData::weight, 400), newMarked(GeometryData::binormal, 500),
                         newMarked(GeometryData::userData, 600), newMarked(GeometryData::color, 700),
                         newMarked(GeometryData::tangentSpaceCorrection, 999), nullptr});
    const Walked bare({0}, {});
    using Iterator = GeometryDataIterator;
    const std::tuple<float* (Iterator::*)() const noexcept, bool, float> cases[] = {
        {&Iterator::vertex, true, 101}, // the later one of two
        {&Iterator::normal, true, 201},   {&Iterator::normal, false, 301},  {&Iterator::weight, true, 401},
        {&Iterator::binormal, true, 501}, {&Iterator::userData, true, 601}, {&Iterator::color, true, 701}};
    for (const auto& [value, useNormal, expected] : cases)
    {
        Iterator iterator(walked.list, nullptr);
        EXPECT_TRUE(iterator.useNormal());
        iterator.setUseNormal(useNormal);
        EXPECT_EQ(*(iterator.*value)(), expected);
        iterator.reset(bare.list, nullptr);
        EXPECT_EQ(iterator.useNormal(), useNormal) << "a reset leaves the choice";
        EXPECT_EQ((iterator.*value)(), nullptr);
    }
}

TEST(GeometryDataIterator, ChoosesSlotsByTextureSet)
{
    const Walked walked({0},
                        {newMarked(GeometryData::textureCoord, 10, 1), newMarked(GeometryData::textureCoord, 20, 0),
                         newMarked(GeometryData::tangent, 30, 0), newMarked(GeometryData::tangent, 40, 1)});
    // The sets, then first and second texture coordinate and tangent.
    using Values = std::array<float, 4>;
    const std::tuple<const char*, std::vector<unsigned>, Values> cases[] = {
        {"no sets: the last stream fills both", {}, {20, 20, 40, 40}},
        {"in order", {0, 1}, {20, 10, 30, 40}},
        {"crossed", {1, 0}, {10, 20, 40, 30}},
        {"one set for both", {1, 1}, {10, 10, 40, 40}}};
    for (const auto& [what, sets, values] : cases)
    {
        const GeometryDataIterator i(walked.list, sets.empty() ? nullptr : sets.data());
        EXPECT_EQ((Values{*i.textureCoord(), *i.textureCoord2(), *i.tangent(), *i.tangent2()}), values) << what;
    }
}
