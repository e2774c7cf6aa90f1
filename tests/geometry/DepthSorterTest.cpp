#include <krender/geometry/DepthSorter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

using krLinear::HPoint;
using krLinear::ProjMatrix;

namespace
{

using Order = std::vector<unsigned int>;

constexpr unsigned int kUntouched = 0xDEADBEEF;

/// Points whose z runs through the depths, with x and y of their own.
std::vector<float> pointsAt(const std::vector<float>& depths)
{
    std::vector<float> positions;
    for (std::size_t i = 0; i < depths.size(); ++i)
        positions.insert(positions.end(),
                         {static_cast<float>(i % 7) - 3.0f, static_cast<float>(i % 5) * 0.25f, depths[i]});
    return positions;
}

std::vector<float> depthsFrom(std::size_t n, const std::function<float(std::size_t)>& depth)
{
    std::vector<float> depths(n);
    for (std::size_t i = 0; i < n; ++i)
        depths[i] = depth(i);
    return depths;
}

/// The depths in the order of the library's plain sort under the comparison; they are set in ascending order whatever it
/// does with ties.
std::vector<float> sortedByReference(std::vector<float> depths)
{
    Order order(depths.size());
    std::iota(order.begin(), order.end(), 0u);
    DepthSorter::fsPositionXformZ = depths.data();
    std::qsort(order.data(), order.size(), sizeof order[0], DepthSorter::depthCompareFunction);
    DepthSorter::fsPositionXformZ = nullptr;
    std::vector<float> sorted;
    for (const unsigned int place : order)
        sorted.push_back(depths[place]);
    return sorted;
}

void expectSorted(const Order& order, const std::vector<float>& depths)
{
    Order places = order;
    std::sort(places.begin(), places.end());
    for (std::size_t i = 0; i < places.size(); ++i)
        ASSERT_EQ(places[i], i) << "each place once";
    const std::vector<float> reference = sortedByReference(depths);
    for (std::size_t i = 0; i < order.size(); ++i)
        ASSERT_EQ(depths[order[i]], reference[i]) << "at " << i << " of " << order.size();
}

Order sorted(const ProjMatrix& m, const std::vector<float>& positions, const Order& filter = {})
{
    const std::size_t n = filter.empty() ? positions.size() / 3 : filter.size();
    Order order(n, kUntouched);
    EXPECT_TRUE(DepthSorter::sortByDepth(m, order.data(), static_cast<unsigned int>(positions.size() / 3),
                                         positions.data(), filter.empty() ? nullptr : filter.data(),
                                         static_cast<unsigned int>(filter.size())));
    EXPECT_EQ(DepthSorter::fsPositionXformZ, nullptr);
    return order;
}

/// Sizes on both sides of every change of method.
constexpr std::size_t kSizes[] = {1, 2, 3, 17, 256, 257, 1000, 2048, 2049, 5000, 300000};

} // namespace

TEST(DepthSorter, PutsTheMostNegativeFirst)
{
    EXPECT_EQ(sorted(ProjMatrix(1.0), pointsAt({-5, -1, -3})), (Order{0, 2, 1}));
    EXPECT_EQ(sorted(ProjMatrix(1.0), pointsAt({0, 1, -4, 2, 4, 5, 6, -9}), {7, 2}), (Order{0, 1}));
    EXPECT_EQ(sorted(ProjMatrix(1.0), pointsAt({0, 1, -9, 2, 4, 5, 6, -4}), {7, 2}), (Order{1, 0}));

    const double flipped[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1};
    const auto positions = pointsAt({-5, -1, -3});
    Order order(3);
    EXPECT_TRUE(DepthSorter::sortByDepth(flipped, order.data(), 3, positions.data(), nullptr, 0));
    EXPECT_EQ(order, (Order{1, 2, 0}));
}

TEST(DepthSorter, AnswersWithoutWorkWhereThereIsNone)
{
    const auto positions = pointsAt({1, 0});
    unsigned int order = kUntouched;
    const unsigned int filter = 0;
    const auto sort = [&](unsigned int count, const float* points, const unsigned int* numbers, unsigned int n)
    { return DepthSorter::sortByDepth(ProjMatrix(1.0), &order, count, points, numbers, n); };
    EXPECT_TRUE(sort(0, positions.data(), nullptr, 0));
    EXPECT_TRUE(sort(0, positions.data(), &filter, 1));
    EXPECT_TRUE(sort(2, positions.data(), &filter, 0));
    EXPECT_TRUE(sort(0, nullptr, nullptr, 0));
    EXPECT_FALSE(sort(2, nullptr, nullptr, 0));
    EXPECT_EQ(order, kUntouched);
}

TEST(DepthSorter, AgreesWithThePlainSort)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<float> uniform(-100.0f, 100.0f);
    const auto bits = [&random](std::uint32_t mask, std::uint32_t rest)
    {
        const auto value = std::bit_cast<float>((static_cast<std::uint32_t>(random()) & mask) | rest);
        return std::isnan(value) ? 0.0f : value;
    };
    const float kFew[] = {-1.0f, 0.0f, -0.0f, 1.0f, std::numeric_limits<float>::denorm_min()};
    const std::pair<const char*, std::function<float(std::size_t)>> kinds[] = {
        {"uniform", [&](std::size_t) { return uniform(random); }},
        {"any number", [&](std::size_t) { return bits(0xFFFFFFFFu, 0); }},
        {"sorted", [](std::size_t i) { return static_cast<float>(i) * 0.5f - 40.0f; }},
        {"reversed", [](std::size_t i) { return 40.0f - static_cast<float>(i) * 0.5f; }},
        {"all equal", [](std::size_t) { return -2.5f; }},
        {"few values and both zeros", [&](std::size_t) { return kFew[random() % std::size(kFew)]; }},
        {"one low digit", [&](std::size_t) { return bits(7u, 0x3F800000u); }},
        {"one high digit", [&](std::size_t) { return bits(0x7F800000u, 5u); }},
        {"last one out of order", [](std::size_t i) { return i % 300000 == 299999 ? -1.0f : static_cast<float>(i); }},
        {"infinities", [&](std::size_t i) { return i % 3   ? uniform(random)
                                                   : i % 2 ? INFINITY
                                                           : -INFINITY; }},
    };
    for (const auto& [what, depth] : kinds)
        for (const std::size_t n : kSizes)
        {
            SCOPED_TRACE(what);
            const auto depths = depthsFrom(n, depth);
            expectSorted(sorted(ProjMatrix(1.0), pointsAt(depths)), depths);
        }
}

TEST(DepthSorter, TransformsDepthsExactlyAsTheMatrixDoes)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> uniform(-2.0, 2.0);
    for (const std::size_t n : kSizes)
    {
        ProjMatrix m;
        for (unsigned i = 0; i < 16; ++i)
            m(i / 4, i % 4) = uniform(random);
        const auto positions =
            pointsAt(depthsFrom(n, [&](std::size_t) { return static_cast<float>(uniform(random)); }));
        const auto depthOf = [&](std::size_t i)
        {
            HPoint result;
            m.preMult(result, HPoint(positions[3 * i], positions[3 * i + 1], positions[3 * i + 2], 1.0));
            return static_cast<float>(result.z);
        };
        expectSorted(sorted(m, positions), depthsFrom(n, depthOf));

        Order filter(std::max<std::size_t>(1, n / 2));
        for (unsigned int& number : filter)
            number = static_cast<unsigned int>(random() % n);
        expectSorted(sorted(m, positions, filter),
                     depthsFrom(filter.size(), [&](std::size_t i) { return depthOf(filter[i]); }));
    }
}

// A filtered sort is exact about the identity, an unfiltered one takes what is equivalent to it for it.
TEST(DepthSorter, TakesNearlyTheIdentityForItWithoutAFilterOnly)
{
    ProjMatrix nearly(1.0);
    nearly(0, 2) = krLinear::epsilonTol / 2;
    const std::vector<float> positions = {1e9f, 0, 0.0f, 0, 0, 0.01f}; // x outweighs z
    EXPECT_EQ(sorted(nearly, positions), (Order{0, 1}));
    EXPECT_EQ(sorted(nearly, positions, {0, 1}), (Order{1, 0}));
}

TEST(DepthSorter, SurvivesNaN)
{
    std::mt19937 random(3);
    for (const std::size_t n : kSizes)
    {
        const auto depths = depthsFrom(n, [&](std::size_t i)
                                       { return i % 5 == 1 ? (i % 2 ? NAN : -NAN) : static_cast<float>(random()); });
        const Order order = sorted(ProjMatrix(1.0), pointsAt(depths));
        Order places = order;
        std::sort(places.begin(), places.end());
        float last = -INFINITY;
        for (std::size_t i = 0; i < n; ++i)
        {
            ASSERT_EQ(places[i], i) << "each place once";
            if (const float depth = depths[order[i]]; !std::isnan(depth))
            {
                ASSERT_GE(depth, last) << "the numbers are in order all the same";
                last = depth;
            }
        }
    }
}
