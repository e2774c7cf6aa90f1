#include "geometry/Fixtures.h"

#include <krender/geometry/ParticleDataIterator.h>

#include <gtest/gtest.h>

using krLinear::ProjMatrix;

namespace
{

/// A stream of one component an element whose values tell the element: base, base + 1, and so on.
GeometryData* newNumbered(float base, unsigned int elements, unsigned int components, const char* name)
{
    auto values = std::make_unique_for_overwrite<float[]>(std::size_t{elements} * components);
    for (unsigned int i = 0; i < elements * components; ++i)
        values[i] = base + static_cast<float>(i / components);
    return new GeometryData(name, GeometryData::vertex, GeometryData::float32, components, elements, values.release(),
                            true, false);
}

struct Optional
{
    bool normals = false;
    bool colors = false;
    bool alpha = false;
};

/// Particles that hold the only references on their streams.
Held<ParticleData> makeParticles(ParticleData::ParticleType type, GeometryData* positions, unsigned int velocityCount,
                                 Optional optional = {})
{
    const Held<GeometryData> heldPositions(positions);
    const Held<GeometryData> velocities(newNumbered(200, velocityCount, 3, "velocity"));
    const Held<GeometryData> normals(newNumbered(300, velocityCount, 3, "normal"));
    const Held<GeometryData> colors(newNumbered(400, velocityCount, 4, "color"));
    const Held<GeometryData> alpha(newNumbered(500, velocityCount, 1, "alpha"));
    return Held<ParticleData>(
        new ParticleData(type, 2.5f, *positions, *velocities, optional.normals ? normals.get() : nullptr,
                         optional.colors ? colors.get() : nullptr, optional.alpha ? alpha.get() : nullptr));
}

std::vector<unsigned int> indicesOf(ParticleDataIterator& iterator)
{
    std::vector<unsigned int> result;
    for (; !iterator.isDone(); iterator.next())
        result.push_back(iterator.index());
    return result;
}

} // namespace

TEST(ParticleData, RefsTheStreamsOfTheConstructorAndAdoptsAddedOnes)
{
    int alive = 0;
    const auto make = [&alive](const char* name)
    {
        return new Counted<GeometryData>(alive, name, GeometryData::vertex, GeometryData::float32, 3u, 1u,
                                         newArray({1.0f, 2.0f, 3.0f}), true, false);
    };
    GeometryData* positions = make("position");
    GeometryData* velocities = make("velocity");
    auto* particles = new ParticleData(ParticleData::single, 1.0f, *positions, *velocities, nullptr, nullptr, nullptr);
    const GeometryData* added = make("added");
    particles->addData(*added);
    EXPECT_EQ(particles->getData(2), added);
    EXPECT_EQ(particles->getData(3), nullptr);
    EXPECT_EQ(particles->index()->data().size(), 2u) << "the list keeps the streams of the constructor";

    int hangers = 0;
    positions->setHanger(new Hanger(hangers));
    EXPECT_EQ(particles->unref(), 0);
    EXPECT_EQ(hangers, 0) << "the list took the hangers of its streams along";
    EXPECT_EQ(alive, 2) << "the caller's references on the first two are left";
    EXPECT_EQ(positions->unref() + velocities->unref(), 0);
    EXPECT_EQ(alive, 0);
}

TEST(ParticleData, NumbersTheStreamsThatAreGiven)
{
    struct Case
    {
        Optional given;
        int normal, color, alpha;
    };
    const Case cases[] = {{{false, false, false}, -1, -1, -1}, {{true, false, false}, 2, -1, -1},
                          {{false, true, false}, -1, 2, -1},   {{false, false, true}, -1, -1, 2},
                          {{true, true, false}, 2, 3, -1},     {{true, false, true}, 2, -1, 3},
                          {{false, true, true}, -1, 2, 3},     {{true, true, true}, 2, 3, 4}};
    for (const Case& c : cases)
    {
        const auto particles = makeParticles(ParticleData::single, newNumbered(100, 2, 3, "position"), 2, c.given);
        EXPECT_EQ(particles->normalStream(), c.normal);
        EXPECT_EQ(particles->colorStream(), c.color);
        EXPECT_EQ(particles->alphaStream(), c.alpha);
        EXPECT_EQ(particles->getDataIndex("velocity"), 1u);
        EXPECT_EQ(particles->getDataIndex("alpha"), c.alpha < 0 ? 0xFFFFFFFFu : static_cast<unsigned int>(c.alpha));

        ParticleDataIterator iterator(*particles, nullptr, 0);
        iterator.next();
        EXPECT_EQ(iterator.position()[2], 101);
        EXPECT_EQ(iterator.velocity()[2], 201);
        EXPECT_EQ(iterator.normal() ? iterator.normal()[2] : 0.0f, c.normal < 0 ? 0.0f : 301.0f);
        EXPECT_EQ(iterator.color() ? iterator.color()[3] : 0.0f, c.color < 0 ? 0.0f : 401.0f);
        EXPECT_EQ(iterator.colorComponents(), c.color < 0 ? 0u : 4u);
        EXPECT_EQ(iterator.alpha() ? *iterator.alpha() : 0.0f, c.given.colors && c.given.alpha ? 501.0f : 0.0f)
            << "alpha comes with colours only";
    }
}

TEST(ParticleData, IsDrawnAsPointsUntilToldOtherwise)
{
    const auto particles = makeParticles(ParticleData::trail, newNumbered(0, 1, 3, "position"), 1);
    EXPECT_EQ(particles->index()->primitiveType(), GeometryDataIndex::points);
    EXPECT_EQ(particles->index()->count(), 0u);
    EXPECT_EQ(particles->index()->indices(), nullptr);
    particles->setDrawType(GeometryDataIndex::lines);
    EXPECT_EQ(particles->index()->primitiveType(), GeometryDataIndex::lines);
    EXPECT_EQ(particles->color(), (std::array{1.0f, 1.0f, 1.0f, 1.0f}));
    const float rgba[] = {0.1f, 0.2f, 0.3f, 0.4f};
    particles->setColor(rgba);
    EXPECT_EQ(particles->color(), std::to_array(rgba));
}

TEST(ParticleData, SortsAllParticlesOrThoseOfAFilter)
{
    GeometryData* positions = newStream(GeometryData::vertex, 3, {0, 0, -5, 0, 0, -1, 0, 0, -3, 0, 0, -4});
    const auto particles = makeParticles(ParticleData::single, positions, 4);
    ParticleDataIterator iterator(*particles, nullptr, 0);
    iterator.useParticleDataFilter();
    EXPECT_TRUE(iterator.isDone()) << "there is no order yet";

    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), nullptr, 0));
    iterator.useParticleDataFilter();
    EXPECT_EQ(indicesOf(iterator), (std::vector<unsigned int>{0, 3, 2, 1}));

    const unsigned int filter[] = {1, 3};
    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), filter, 2));
    EXPECT_EQ(particles->sortedCount(), 4u) << "counts the particles, not the filter";
    EXPECT_EQ(particles->sortOrder()[0], 1u) << "places in the filter";
    EXPECT_EQ(particles->sortOrder()[1], 0u);
    iterator.reset(*particles, nullptr, 0);
    iterator.useParticleDataFilter();
    EXPECT_EQ(indicesOf(iterator), (std::vector<unsigned int>{1, 0, 0, 0})) << "what follows the filter's places is 0";

    const unsigned int longFilter[] = {1, 3, 0, 0, 2, 1};
    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), longFilter, 6));
    EXPECT_EQ(particles->sortOrder()[2], 1u);
    EXPECT_EQ(longFilter[particles->sortOrder()[5]], 1u);

    particles->sortByDepth(ProjMatrix(1.0), filter, 0);
    EXPECT_EQ(particles->sortOrder(), nullptr) << "an empty filter forgets the order";
    EXPECT_FALSE(particles->sorted());
    EXPECT_TRUE(particles->sortByDepth(ProjMatrix(1.0), nullptr, 0));
    particles->removeSortByDepth();
    EXPECT_EQ(particles->sortOrder(), nullptr);
    EXPECT_EQ(particles->sortedCount(), 0u);

    const auto none = makeParticles(ParticleData::single, newStream(GeometryData::vertex, 3, {}), 0);
    EXPECT_FALSE(none->sortByDepth(ProjMatrix(1.0), nullptr, 0));
}

TEST(ParticleDataIterator, CountsByTypeAndFilter)
{
    const unsigned int filter[] = {5, 0, 2};
    struct Case
    {
        ParticleData::ParticleType type;
        const unsigned int* filter;
        unsigned int count, positionsPerParticle;
        float lastPosition;
    };
    // 7 positions for 3 velocities: a cluster has two, and the rest is left over.
    const Case cases[] = {
        {ParticleData::single, nullptr, 7, 1, 106},       {ParticleData::trail, nullptr, 7, 1, 106},
        {ParticleData::single, filter, 3, 1, 102},        {ParticleData::trail, filter, 3, 1, 102},
        {ParticleData::cluster, nullptr, 3, 2, 104},      {ParticleData::cluster, filter, 3, 2, 104},
        {ParticleData::trailCluster, nullptr, 3, 2, 104}, {ParticleData::trailCluster, filter, 3, 2, 104}};
    for (const Case& c : cases)
    {
        const auto particles = makeParticles(c.type, newNumbered(100, 7, 3, "position"), 3);
        ParticleDataIterator iterator(*particles, c.filter, 3);
        EXPECT_EQ(iterator.count(), c.count);
        EXPECT_EQ(iterator.positionsPerParticle(), c.positionsPerParticle);
        while (iterator.current() + 1 < iterator.count())
            iterator.next();
        EXPECT_EQ(*iterator.position(), c.lastPosition) << "type " << c.type << (c.filter ? ", filtered" : "");
        iterator.next();
        iterator.next();
        EXPECT_EQ(iterator.current(), iterator.count());

        iterator.setFilter(nullptr, 10);
        EXPECT_EQ(iterator.count(), 0u);
    }
    const auto still = makeParticles(ParticleData::cluster, newNumbered(100, 7, 3, "position"), 0);
    EXPECT_TRUE(ParticleDataIterator(*still, nullptr, 0).isDone()) << "no velocities, no particles";
}

TEST(ParticleDataIterator, KeepsPositionsPerParticleWhenResetToSinglePositions)
{
    const auto clusters = makeParticles(ParticleData::cluster, newNumbered(100, 6, 3, "position"), 3);
    const auto singles = makeParticles(ParticleData::single, newNumbered(100, 6, 3, "position"), 6);
    ParticleDataIterator iterator(*clusters, nullptr, 0);
    iterator.reset(*singles, nullptr, 0);
    EXPECT_EQ(iterator.positionsPerParticle(), 2u);
    EXPECT_EQ(ParticleDataIterator(*singles, nullptr, 0).positionsPerParticle(), 1u);
}

TEST(ParticleDataIterator, StepsThroughAnyStreamByItsElementSize)
{
    const auto particles = makeParticles(ParticleData::single, newNumbered(100, 3, 3, "position"), 3);
    auto* pairs = newArray<std::int16_t>({1, 2, 3, 4, 5, 6});
    particles->addData(
        *new GeometryData("pairs", GeometryData::userData, GeometryData::int16, 2, 3, pairs, true, false));
    const unsigned int filter[] = {2};
    const ParticleDataIterator iterator(*particles, filter, 1);
    EXPECT_EQ(iterator.userData(2), pairs + 4);
    EXPECT_EQ(iterator.userData(0), iterator.position());
    EXPECT_EQ(iterator.userData(3), nullptr);
}

TEST(CeilPow2, RoundsUp)
{
    const std::pair<unsigned int, unsigned int> cases[] = {
        {0, 1},         {1, 1}, {2, 2}, {3, 4}, {5, 8}, {8, 8}, {0x7FFFFFFF, 0x80000000}, {0x80000000, 0x80000000},
        {0x80000001, 0}};
    for (const auto& [n, power] : cases)
        EXPECT_EQ(ceilPow2(n), power) << n;
}
