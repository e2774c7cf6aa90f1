#include "geometry/Fixtures.h"

#include "SharedObjects.h"

#include <krender/core/IResource.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

// The memory checkers see what is released, and as which type.
TEST(GeometryData, ReleasesOwnedArraysOfEveryTypeButOpaque)
{
    const auto useUp = [](int type, void* data, bool owns)
    {
        const auto elementType = static_cast<GeometryData::ElementType>(type);
        Held<GeometryData>(new GeometryData("", GeometryData::userData, elementType, 1, 2, data, owns, false));
    };
    int type = 0;
    std::apply([&](auto... component) { (useUp(++type, new decltype(component)[2], true), ...); },
               std::tuple<float, double, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                          std::uint32_t>());

    const std::unique_ptr<char[]> kept(newArray({'a', 'b'}));
    useUp(GeometryData::opaque, kept.get(), true);
    useUp(GeometryData::uint8, kept.get(), false);
    useUp(9, kept.get(), true);
    EXPECT_EQ(kept[1], 'b');
}

TEST(GeometryData, CopiesItsName)
{
    char name[] = "uv";
    const Held<GeometryData> stream(
        new GeometryData(name, GeometryData::textureCoord, GeometryData::float32, 2, 0, nullptr, false, false));
    name[0] = 'x';
    EXPECT_STREQ(stream->streamName(), "uv");
    EXPECT_STREQ(stream->name(), "") << "the resource's name is another one";
    EXPECT_TRUE(stream->setIndex == 0 && !stream->hanger());
}

TEST(GeometryData, AlwaysOwnsItsHanger)
{
    int hangers = 0;
    Held<GeometryData> stream(newStream(GeometryData::vertex, 1, {}));
    stream->setHanger(new Hanger(hangers));
    auto* second = new Hanger(hangers);
    stream->setHanger(second);
    stream->setHanger(second);
    EXPECT_EQ(hangers, 1) << "the first one went when it was replaced, the second one stayed when hung again";
    stream.reset();
    EXPECT_EQ(hangers, 0);
}

TEST(GeometryDataIndex, TakesItsRangeFromTheFullFormOnly)
{
    const unsigned start = 3;
    const unsigned end = 5;
    const auto expectRange = [](GeometryDataIndex* made, unsigned rangeStart, unsigned rangeEnd)
    {
        const Held<GeometryDataIndex> list(made);
        EXPECT_EQ(std::pair(list->rangeStart(), list->rangeEnd()), std::pair(rangeStart, rangeEnd));
        EXPECT_EQ(list->widenedIndices(), nullptr) << "there is a count, but there are no indices";
    };
    expectRange(new GeometryDataIndex(GeometryDataIndex::lines, 7, {}, nullptr, &end, &start), 3, 5);
    expectRange(new GeometryDataIndex(GeometryDataIndex::lines, 7, {}, nullptr, nullptr, &start), 3, 7);
    expectRange(new GeometryDataIndex(GeometryDataIndex::lines, 7, {}, nullptr, &end, nullptr), 0, 5);
    expectRange(new GeometryDataIndex(GeometryDataIndex::lines, 7, nullptr), 0, 0);
}

TEST(GeometryDataIndex, ShortListsDrawTheirIdWithoutTheGuardAgainstZero)
{
    const std::uint32_t before = std::exchange(IResource::fsUniqueIDGenerator, 0xFFFFFFFFu);
    const Held<GeometryDataIndex> last(newList(GeometryDataIndex::points, 0));
    const Held<GeometryDataIndex> wrapped(newList(GeometryDataIndex::points, 0));
    IResource::fsUniqueIDGenerator = 0;
    const Held<GeometryDataIndex> shortList(new GeometryDataIndex(GeometryDataIndex::points, 0, nullptr));
    IResource::fsUniqueIDGenerator = 0;
    const Held<GeometryData> stream(newStream(GeometryData::vertex, 1, {}));
    EXPECT_EQ(std::exchange(IResource::fsUniqueIDGenerator, before), 2u);
    EXPECT_EQ((std::array{last->id(), wrapped->id(), shortList->id(), stream->id()}),
              (std::array{0xFFFFFFFFu, 1u, 0u, 1u}));
}

TEST(GeometryDataIndex, DeletesOnlyWhatItOwns)
{
    int hangers = 0;
    Hanger own(hangers);
    const std::unique_ptr<unsigned[]> indices(newArray({0u, 1u}));
    {
        const Held<GeometryDataIndex> list(new GeometryDataIndex(GeometryDataIndex::lines, 2, indices.get()));
        auto* owned = new Hanger(hangers);
        list->setHanger(owned);
        list->setHanger(owned);
        EXPECT_EQ(hangers, 2) << "an owned hanger stays when it is hung again";
        list->setHanger(nullptr);
        EXPECT_EQ(hangers, 1) << "and goes when it is replaced";

        list->setOwnsIndices(false);
        list->setHanger(&own);
        list->setHanger(nullptr);
        EXPECT_EQ(list->hanger(), nullptr);
        list->setHanger(&own);
    }
    EXPECT_EQ(hangers, 1) << "a borrowed hanger stays";
    EXPECT_EQ(indices[1], 1u) << "so do borrowed indices";
}

TEST(GeometryDataIndex, TakesTheHangersOfItsStreamsWithIt)
{
    int hangers = 0;
    const Held<GeometryData> stream(newStream(GeometryData::vertex, 1, {}));
    {
        const Held<GeometryDataIndex> list(newList(GeometryDataIndex::points, 0, {stream.get(), nullptr}));
        stream->setHanger(new Hanger(hangers));
        list->setHanger(new Hanger(hangers));
        list->deleteDataHangers();
        EXPECT_EQ(hangers, 1) << "the list's own is left";
        stream->setHanger(new Hanger(hangers));
    }
    EXPECT_EQ(hangers, 0);
    EXPECT_EQ(stream->hanger(), nullptr);
}
