#include "geometry/Fixtures.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

namespace
{

Held<GeometryData> plainStream()
{
    return Held<GeometryData>(
        new GeometryData("plain", GeometryData::vertex, GeometryData::float32, 3, 0, nullptr, false, false));
}

} // namespace

TEST(GeometryData, CopiesItsNameAndLeavesThatOfTheResource)
{
    char name[] = "positions";
    const Held<GeometryData> stream(
        new GeometryData(name, GeometryData::vertex, GeometryData::float32, 3, 0, nullptr, true, false));
    name[0] = 'X';
    EXPECT_STREQ(stream->streamName(), "positions");
    EXPECT_STREQ(stream->name(), "");
}

// The memory checkers see what is released, and with which type.
TEST(GeometryData, ReleasesOwnedArraysOfEveryTypeButOpaque)
{
    const auto make = [](int type, void* data, bool owns)
    {
        Held<GeometryData>(new GeometryData("", GeometryData::userData, static_cast<GeometryData::ElementType>(type), 1,
                                            2, data, owns, false));
    };
    std::apply([&, type = 0](auto... component) mutable { (make(++type, new decltype(component)[2], true), ...); },
               std::tuple<float, double, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                          std::uint32_t>());

    const std::unique_ptr<char[]> opaque(newArray({'a', 'b'}));
    const std::unique_ptr<char[]> borrowed(newArray({'c', 'd'}));
    const std::unique_ptr<char[]> unknownType(newArray({'e', 'f'}));
    make(GeometryData::opaque, opaque.get(), true);
    make(GeometryData::uint8, borrowed.get(), false);
    make(9, unknownType.get(), true);
    EXPECT_EQ(opaque[1], 'b');
    EXPECT_EQ(borrowed[1], 'd');
    EXPECT_EQ(unknownType[1], 'f');
}

TEST(GeometryData, AlwaysOwnsItsHanger)
{
    int hangers = 0;
    {
        const Held<GeometryData> stream = plainStream();
        stream->setHanger(new Hanger(hangers));
        auto* second = new Hanger(hangers);
        stream->setHanger(second);
        EXPECT_EQ(hangers, 1) << "the first hanger went when it was replaced";
        stream->setHanger(second);
        EXPECT_EQ(hangers, 1) << "hanging the same object again keeps it";
        stream->deleteHanger();
        EXPECT_EQ(hangers, 0);
        EXPECT_EQ(stream->hanger(), nullptr);
        stream->setHanger(new Hanger(hangers));
    }
    EXPECT_EQ(hangers, 0);
}

TEST(GeometryDataIndex, ShortListsDrawTheirIdWithoutTheGuardAgainstZero)
{
    const IdGenerator generator(std::numeric_limits<std::uint32_t>::max());
    const Held<GeometryDataIndex> last(newList(GeometryDataIndex::points, 0));
    const Held<GeometryDataIndex> wrapped(newList(GeometryDataIndex::points, 0));
    EXPECT_EQ(last->id(), 0xFFFFFFFFu);
    EXPECT_EQ(wrapped->id(), 1u);
    EXPECT_EQ(plainStream()->id(), 2u);

    IResource::fsUniqueIDGenerator = 0;
    const Held<GeometryDataIndex> shortList(new GeometryDataIndex(GeometryDataIndex::points, 0, nullptr));
    EXPECT_EQ(shortList->id(), 0u);
    EXPECT_EQ(IResource::fsUniqueIDGenerator, 1u);

    IResource::fsUniqueIDGenerator = 0;
    EXPECT_EQ(plainStream()->id(), 1u);
}

TEST(GeometryDataIndex, RangeDefaultsDependOnTheForm)
{
    const unsigned int end = 7;
    const unsigned int start = 4;
    const Held<GeometryDataIndex> given(new GeometryDataIndex(GeometryDataIndex::points, 9, {}, nullptr, &end, &start));
    const Held<GeometryDataIndex> full(newList(GeometryDataIndex::points, 9));
    const Held<GeometryDataIndex> shortList(new GeometryDataIndex(GeometryDataIndex::points, 9, nullptr));
    EXPECT_EQ(std::pair(given->rangeStart(), given->rangeEnd()), std::pair(4u, 7u));
    EXPECT_EQ(std::pair(full->rangeStart(), full->rangeEnd()), std::pair(0u, 9u));
    EXPECT_EQ(std::pair(shortList->rangeStart(), shortList->rangeEnd()), std::pair(0u, 0u));
    EXPECT_FALSE(full->boundingBox().isValid());
    EXPECT_FALSE(full->boundingSphere().isValid());
}

TEST(GeometryDataIndex, DeletesOnlyTheHangersThatItOwns)
{
    int hangers = 0;
    Hanger own(hangers);
    const std::unique_ptr<unsigned int[]> indices(newArray({0u, 1u}));
    {
        const Held<GeometryDataIndex> list(new GeometryDataIndex(GeometryDataIndex::lines, 2, indices.get()));
        list->setHanger(new Hanger(hangers));
        list->setHanger(nullptr);
        EXPECT_EQ(hangers, 1) << "an owned hanger goes when it is replaced";

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
    const Held<GeometryData> stream = plainStream();
    const Held<GeometryData> other = plainStream();
    {
        const Held<GeometryDataIndex> list(newList(GeometryDataIndex::points, 0, {stream.get(), nullptr}));
        stream->setHanger(new Hanger(hangers));
        other->setHanger(new Hanger(hangers));
        list->deleteDataHangers();
        EXPECT_EQ(hangers, 1);
        stream->setHanger(new Hanger(hangers));
        list->setHanger(new Hanger(hangers));
    }
    EXPECT_EQ(hangers, 1) << "the list's own hanger and its stream's went, that of a stream it does not use stayed";
    EXPECT_EQ(stream->hanger(), nullptr);
    EXPECT_NE(other->hanger(), nullptr);
}
