#include "geometry/Fixtures.h"

#include "SharedObjects.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/ParticleData.h>
#include <krender/geometry/ParticleDataIterator.h>
#include <krender/platform/Linear.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

using krLinear::ProjMatrix;

namespace
{

/// A stream whose i-th element is `base` + i in every component.
GeometryData* newNumbered(float base, unsigned elements, unsigned components, const char* name)
{
    auto values = std::make_unique_for_overwrite<float[]>(std::size_t{elements} * components);
    for (unsigned i = 0; i < elements; ++i)
        std::fill_n(&values[std::size_t{i} * components], components, base + static_cast<float>(i));
    return new GeometryData(name, GeometryData::vertex, GeometryData::float32, components, elements, values.release(),
                            true, false);
}

/// Particles that hold the only references on their streams, with the optional ones that are named: n, c, a.
Held<ParticleData> makeParticles(ParticleData::ParticleType type, GeometryData* positions, unsigned velocityCount,
                                 std::string_view optional = "")
{
    const Held<GeometryData> heldPositions(positions);
    const Held<GeometryData> velocities(newNumbered(200, velocityCount, 3, "velocity"));
    const Held<GeometryData> normals(newNumbered(300, velocityCount, 3, "normal"));
    const Held<GeometryData> colors(newNumbered(400, velocityCount, 4, "color"));
    const Held<GeometryData> alpha(newNumbered(500, velocityCount, 1, "alpha"));
    const auto given = [&](char name, const Held<GeometryData>& stream)
    { return optional.find(name) != optional.npos ? stream.get() : nullptr; };
    return Held<ParticleData>(new ParticleData(type, 2.5f, *positions, *velocities, given('n', normals),
                                               given('c', colors), given('a', alpha)));
}

} // namespace

TEST(ParticleData, RefsTheStreamsOfTheConstructorAndAdoptsAddedOnes)
{
    const Held<GeometryData> position(newNumbered(100, 1, 3, ""));
    const Held<GeometryData> velocity(newNumbered(200, 1, 3, ""));
    const Held<GeometryData> added(newNumbered(300, 1, 3, ""));
    auto* particles = new ParticleData(ParticleData::single, 1.0f, *position, *velocity, nullptr, nullptr, nullptr);
    added->ref();
    particles->addData(*added);
    EXPECT_TRUE(references(*position) == 2 && references(*velocity) == 2 && references(*added) == 2);
    EXPECT_TRUE(particles->getData(2) == added.get() && !particles->getData(3));
    EXPECT_EQ(particles->index()->data(), (std::vector<const GeometryData*>{position.get(), velocity.get()}));

    int hangers = 0;
    position->setHanger(new Hanger(hangers));
    EXPECT_EQ(particles->unref(), 0);
    EXPECT_EQ(hangers, 0) << "the list took the hangers of its streams along";
    EXPECT_TRUE(references(*position) == 1 && references(*velocity) == 1 && references(*added) == 1);
}

TEST(ParticleData, StartsWhiteAsPoints)
{
    struct Spare : ParticleData
    {
        using ParticleData::ParticleData;
        [[nodiscard]] bool isClear() const { return fReserved == 0 && !fSpare; }
    };
    const Held<GeometryData> stream(newNumbered(100, 1, 3, ""));
    const Held<Spare> particles(new Spare(ParticleData::trail, 2.5f, *stream, *stream, nullptr, nullptr, nullptr));
    EXPECT_TRUE(particles->isClear() && particles->size() == 2.5f);
    EXPECT_EQ(particles->color(), (std::array{1.0f, 1.0f, 1.0f, 1.0f}));
    particles->setColor(std::array{0.1f, 0.2f, 0.3f, 0.4f}.data());
    EXPECT_EQ(particles->color(), (std::array{0.1f, 0.2f, 0.3f, 0.4f}));
    EXPECT_TRUE(particles->index()->primitiveType() == GeometryDataIndex::points && particles->index()->count() == 0);
    particles->setDrawType(GeometryDataIndex::lineStrip);
    EXPECT_EQ(particles->index()->primitiveType(), GeometryDataIndex::lineStrip);
}

TEST(ParticleData, NumbersTheStreamsThatAreGiven)
{
    const std::tuple<const char*, int, int, int> cases[] = {{"", -1, -1, -1}, {"n", 2, -1, -1}, {"c", -1, 2, -1},
                                                            {"a", -1, -1, 2}, {"nc", 2, 3, -1}, {"na", 2, -1, 3},
                                                            {"ca", -1, 2, 3}, {"nca", 2, 3, 4}};
    for (const auto& [given, normal, color, alpha] : cases)
    {
        SCOPED_TRACE(given);
        const auto particles = makeParticles(ParticleData::single, newNumbered(100, 2, 3, "position"), 2, given);
        EXPECT_EQ(std::tuple(particles->normalStream(), particles->colorStream(), particles->alphaStream()),
                  std::tuple(normal, color, alpha));
        EXPECT_EQ(particles->getDataIndex("velocity"), 1u);
        EXPECT_EQ(particles->getDataIndex("alpha"), alpha < 0 ? 0xFFFFFFFFu : static_cast<unsigned>(alpha));

        ParticleDataIterator iterator(*particles, nullptr, 0);
        iterator.next();
        const auto at = [](const float* values, int i) { return values ? values[i] : 0.0f; };
        EXPECT_EQ((std::array{at(iterator.position(), 2), at(iterator.velocity(), 2), at(iterator.normal(), 2),
                              at(iterator.color(), 3), at(iterator.alpha(), 0)}),
                  (std::array{101.0f, 201.0f, normal < 0 ? 0 : 301.0f, color < 0 ? 0 : 401.0f,
                              color < 0 || alpha < 0 ? 0 : 501.0f}))
            << "alpha comes with colours only";
    }
}

TEST(ParticleData, SortsAllParticlesOrThoseOfAFilter)
{
    using Order = std::vector<unsigned>;
    const auto particles = makeParticles(
        ParticleData::single, newStream(GeometryData::vertex, 3, {0, 0, -5, 0, 0, -1, 0, 0, -3, 0, 0, -4}), 4);
    const auto walk = [&particles]
    {
        Order indices;
        ParticleDataIterator iterator(*particles, nullptr, 0);
        for (iterator.useParticleDataFilter(); !iterator.isDone(); iterator.next())
            indices.push_back(iterator.index());
        return indices;
    };
    EXPECT_EQ(walk(), Order()) << "there is no order yet";
    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), nullptr, 0));
    EXPECT_EQ(walk(), (Order{0, 3, 2, 1}));

    const Order filter = {1, 3};
    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), filter.data(), 2));
    EXPECT_EQ(walk(), (Order{1, 0, 0, 0})) << "places in the filter, and 0 up to the number of particles";
    EXPECT_FALSE(particles->sortByDepth(ProjMatrix(1.0), filter.data(), 0));
    EXPECT_EQ(particles->sortOrder(), nullptr) << "an empty filter drops the order";
    EXPECT_TRUE(!particles->sorted() && particles->sortedCount() == 4);

    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), nullptr, 0) &&
                particles->sortByDepth(ProjMatrix(1.0), particles->sortOrder(), 4))
        << "by its own order";
    EXPECT_EQ(walk(), (Order{0, 1, 2, 3})) << "which was sorted already";
    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), particles->sortOrder() + 1, 2)) << "or by a part of it";
    const Order twice = {1, 3, 1, 3, 1};
    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), twice.data(), 5)) << "a filter may be longer than the stream";
    EXPECT_EQ(particles->sortOrder()[4] % 2, 0u) << "the nearest is number 1, in an even place";
    particles->removeSortByDepth();
    EXPECT_TRUE(!particles->sorted() && !particles->sortOrder() && particles->sortedCount() == 0);
}

TEST(ParticleData, HasNoOrderWhenASortFails)
{
    for (const unsigned count : {0u, 4u}) // of positions in no array
    {
        auto* positions =
            new GeometryData("", GeometryData::vertex, GeometryData::float32, 3, count, nullptr, false, false);
        const auto particles = makeParticles(ParticleData::single, positions, 4);
        EXPECT_FALSE(particles->sortByDepth(ProjMatrix(1.0), nullptr, 0));
        EXPECT_TRUE(!particles->sorted() && !particles->sortOrder() && particles->sortedCount() == count);
    }
}

TEST(ParticleDataIterator, CountsByTypeAndFilter)
{
    // 7 positions for 3 velocities: a cluster has two, and one is left over. Type, filtered, count, last position.
    const std::tuple<ParticleData::ParticleType, bool, unsigned, float> cases[] = {
        {ParticleData::single, false, 7, 106},       {ParticleData::single, true, 3, 102},
        {ParticleData::trail, false, 7, 106},        {ParticleData::trail, true, 3, 102},
        {ParticleData::cluster, false, 3, 104},      {ParticleData::cluster, true, 3, 104},
        {ParticleData::trailCluster, false, 3, 104}, {ParticleData::trailCluster, true, 3, 104}};
    const unsigned filter[] = {5, 0, 2};
    for (const auto& [type, filtered, count, lastPosition] : cases)
    {
        const auto particles = makeParticles(type, newNumbered(100, 7, 3, "position"), 3);
        ParticleDataIterator iterator(*particles, filtered ? filter : nullptr, 3);
        EXPECT_EQ(iterator.count(), count);
        while (iterator.current() + 1 < iterator.count())
            iterator.next();
        EXPECT_EQ(*iterator.position(), lastPosition) << "type " << type << (filtered ? ", filtered" : "");
        iterator.next();
        iterator.next();
        EXPECT_EQ(iterator.current(), count) << "next() stays at the end";
        iterator.setFilter(nullptr, 10);
        EXPECT_EQ(iterator.count(), 0u);
    }
    const auto still = makeParticles(ParticleData::cluster, newNumbered(100, 7, 3, "position"), 0);
    EXPECT_TRUE(ParticleDataIterator(*still, nullptr, 0).isDone()) << "no velocities, no particles";
}

TEST(ParticleDataIterator, ResetStartsOverButKeepsPositionsPerParticle)
{
    const auto clusters = makeParticles(ParticleData::cluster, newNumbered(100, 6, 3, "position"), 3, "nca");
    const auto singles = makeParticles(ParticleData::single, newNumbered(100, 6, 3, "position"), 6);
    ParticleDataIterator iterator(*clusters, nullptr, 0);
    iterator.next();
    iterator.reset(*singles, nullptr, 0);
    EXPECT_EQ(std::tuple(iterator.current(), iterator.positionsPerParticle(), iterator.colorComponents()),
              std::tuple(0, 2, 0));
    EXPECT_TRUE(!iterator.normal() && !iterator.color() && !iterator.alpha());
    EXPECT_EQ(ParticleDataIterator(*singles, nullptr, 0).positionsPerParticle(), 1u);
}

TEST(ParticleDataIterator, StepsByTheElementsOfEachStream)
{
    const Held<GeometryData> colors(newNumbered(400, 3, 3, "color"));
    const Held<ParticleData> particles(
        new ParticleData(ParticleData::single, 1.0f, *colors, *colors, nullptr, colors.get(), nullptr));
    // Element type, components, bytes from one particle to the next.
    const std::tuple<int, unsigned, unsigned> cases[] = {{0, 3, 3}, {1, 2, 8}, {2, 1, 8}, {3, 4, 4}, {4, 1, 1},
                                                         {5, 3, 6}, {6, 1, 2}, {7, 2, 8}, {8, 1, 4}};
    char data[3 * 8] = {};
    const auto addData = [&particles](int type, unsigned components, void* array)
    {
        particles->addData(*new GeometryData("", GeometryData::userData, static_cast<GeometryData::ElementType>(type),
                                             components, 3, array, false, false));
    };
    for (const auto& [type, components, bytes] : cases)
        addData(type, components, data);
    addData(GeometryData::float32, 1, nullptr);
    addData(GeometryData::float64, 0xFFFFFFFFu, data);

    const unsigned filter[] = {2, 0xFFFFFFFFu};
    ParticleDataIterator iterator(*particles, filter, 2);
    EXPECT_EQ(iterator.color(), static_cast<float*>(colors->data()) + 6) << "colours of three components";
    for (unsigned stream = 3; const auto& [type, components, bytes] : cases)
        EXPECT_EQ(iterator.userData(stream++), data + std::size_t{2} * bytes) << "of element type " << type;
    EXPECT_EQ(iterator.userData(12), nullptr) << "no array";
    iterator.next();
    EXPECT_EQ(iterator.userData(13), nullptr) << "its place in bytes does not fit";
    EXPECT_EQ(iterator.userData(14), nullptr) << "no stream";
}

TEST(CeilPow2, RoundsUp)
{
    for (const auto& [n, power] : {std::pair(0u, 1u),
                                   {1u, 1u},
                                   {2u, 2u},
                                   {3u, 4u},
                                   {5u, 8u},
                                   {8u, 8u},
                                   {9u, 16u},
                                   {1u << 31, 1u << 31},
                                   {(1u << 31) + 1, 0u}})
        EXPECT_EQ(ceilPow2(n), power) << n;
}
