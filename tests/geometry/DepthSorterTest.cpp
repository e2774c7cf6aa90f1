#include <krender/geometry/DepthSorter.h>

#include <krender/platform/Linear.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using krLinear::ProjMatrix;

namespace
{

using Depths = std::vector<float>;
using Order = std::vector<unsigned>;

/// Sizes on both sides of every change of method.
constexpr std::size_t kSizes[] = {1, 2, 3, 17, 512, 513, 2048, 2049, 300000};

Depths makeDepths(std::size_t n, const std::function<double(std::size_t)>& depth)
{
    Depths depths;
    for (std::size_t i = 0; i < n; ++i)
        depths.push_back(static_cast<float>(depth(i)));
    return depths;
}

/// Points with these z, and with x and y of their own.
std::vector<float> pointsAt(const Depths& depths)
{
    std::vector<float> positions;
    for (const float depth : depths)
        positions.insert(positions.end(), {static_cast<float>(positions.size() % 7) - 3.0f, 0.25f, depth});
    return positions;
}

Order sorted(const ProjMatrix& m, const std::vector<float>& positions, const Order& filter = {})
{
    Order order(filter.empty() ? positions.size() / 3 : filter.size());
    EXPECT_TRUE(DepthSorter::sortByDepth(m, order.data(), static_cast<unsigned>(positions.size() / 3), positions.data(),
                                         filter.empty() ? nullptr : filter.data(),
                                         static_cast<unsigned>(filter.size())));
    EXPECT_EQ(DepthSorter::fsPositionXformZ, nullptr);
    return order;
}

/// Expects the order of a plain stable sort. A NaN comes before or after all numbers, by its sign.
void expectSorted(const Order& order, const Depths& depths)
{
    const auto key = [&depths](unsigned place)
    {
        const float depth = depths[place];
        return std::isnan(depth) ? std::pair(std::signbit(depth) ? -1 : 1, 0.0f) : std::pair(0, depth);
    };
    Order reference(depths.size());
    std::iota(reference.begin(), reference.end(), 0u);
    std::stable_sort(reference.begin(), reference.end(), [&](unsigned a, unsigned b) { return key(a) < key(b); });
    EXPECT_TRUE(order == reference) << "of " << order.size();
}

} // namespace

TEST(DepthSorter, PutsTheMostNegativeFirst)
{
    const auto positions = pointsAt({-5, -1, -3});
    EXPECT_EQ(sorted(ProjMatrix(1.0), positions), (Order{0, 2, 1}));
    EXPECT_EQ(sorted(ProjMatrix(1.0), pointsAt({0, 1, -4, 2, 4, 5, 6, -9}), {7, 2}), (Order{0, 1}));
    EXPECT_EQ(sorted(ProjMatrix(1.0), pointsAt({0, 1, -9, 2, 4, 5, 6, -4}), {7, 2}), (Order{1, 0}));

    const double flipped[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1};
    Order order(3);
    EXPECT_TRUE(DepthSorter::sortByDepth(flipped, order.data(), 3, positions.data(), nullptr, 0));
    EXPECT_EQ(order, (Order{1, 2, 0}));
}

TEST(DepthSorter, AnswersWithoutWorkWhereThereIsNone)
{
    const float point[] = {0, 0, 0};
    const unsigned number = 0;
    unsigned order = 77;
    const auto sort = [](unsigned* places, unsigned count, const float* points, const unsigned* filter, unsigned n)
    { return DepthSorter::sortByDepth(ProjMatrix(1.0), places, count, points, filter, n); };
    EXPECT_TRUE(sort(&order, 0, point, nullptr, 0) && sort(&order, 0, point, &number, 1)) << "no points";
    EXPECT_TRUE(sort(&order, 0, nullptr, nullptr, 0) && sort(nullptr, 0, nullptr, nullptr, 0)) << "no points at all";
    EXPECT_FALSE(sort(&order, 1, nullptr, nullptr, 0) || sort(&order, 1, nullptr, &number, 0)) << "no positions";
    EXPECT_TRUE(sort(&order, 1, point, &number, 0) && sort(nullptr, 1, point, &number, 0)) << "an empty filter";
    EXPECT_TRUE(sort(nullptr, 1, nullptr, &number, 0)) << "an empty filter and nothing else";
    EXPECT_FALSE(sort(nullptr, 1, point, nullptr, 0) || sort(nullptr, 1, point, &number, 1)) << "no order";
    EXPECT_FALSE(sort(nullptr, 1, nullptr, nullptr, 0)) << "neither positions nor an order";
    EXPECT_EQ(order, 77u) << "is left alone";
}

TEST(DepthSorter, AgreesWithThePlainSort)
{
    std::mt19937 random(11);
    const auto bits = [&random](std::uint32_t mask, std::uint32_t rest)
    {
        const auto value = std::bit_cast<float>((static_cast<std::uint32_t>(random()) & mask) | rest);
        return std::isnan(value) ? std::copysign(NAN, value) : value;
    };
    const float few[] = {-1.0f, 0.0f, -0.0f, 1.0f, 1e-45f};
    const std::pair<const char*, std::function<double(std::size_t)>> kinds[] = {
        {"any number, infinities and NaN", [&](std::size_t) { return bits(0xFFFFFFFFu, 0); }},
        {"sorted", [](std::size_t i) { return static_cast<double>(i) - 40.0; }},
        {"reversed", [](std::size_t i) { return 40.0 - static_cast<double>(i); }},
        {"reversed in pairs", [](std::size_t i) { return 40.0 - static_cast<double>(i & ~std::size_t{1}); }},
        {"all equal", [](std::size_t) { return -2.5; }},
        {"few values and both zeros", [&](std::size_t) { return few[random() % std::size(few)]; }},
        {"differences in the lowest digit", [&](std::size_t) { return bits(7u, 0x3F800000u); }},
        {"differences in the highest digit", [&](std::size_t) { return bits(0x7F800000u, 5u); }},
        {"one apart in every digit", [](std::size_t i) { return i == 300 ? -1.0 : 5.0; }},
    };
    for (const auto& [what, depth] : kinds)
        for (const std::size_t n : kSizes)
        {
            SCOPED_TRACE(what);
            const auto depths = makeDepths(n, depth);
            expectSorted(sorted(ProjMatrix(1.0), pointsAt(depths)), depths);
        }
}

TEST(DepthSorter, TakesTheThirdComponentAsAFloatWithoutDividingIt)
{
    // The depth is 2x - 3y + z / 2; by the fourth column a division would turn signs.
    ProjMatrix m(std::array{9.0, 8.0, 2.0, 7.0, 6.0, 5.0, -3.0, 4.0, 3.0, 2.0, 0.5, 1.0, 5.0, 6.0, 0.0, -8.0});
    const std::vector<float> positions = {1, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0};
    EXPECT_EQ(sorted(m, positions), (Order{1, 3, 2, 0}));
    EXPECT_EQ(sorted(m, positions, {3, 0, 1}), (Order{2, 0, 1}));
    m(3, 2) = 1e9;
    EXPECT_EQ(sorted(m, positions), (Order{0, 1, 2, 3})) << "beside which a float holds none of the differences";
}

TEST(DepthSorter, TakesNearlyTheIdentityForItWithoutAFilterOnly)
{
    ProjMatrix nearly(1.0);
    nearly(0, 2) = krLinear::epsilonTol / 2;
    const std::vector<float> positions = {1e9f, 0, 0.0f, 0, 0, 0.01f}; // the first one's x outweighs the second one's z
    EXPECT_EQ(sorted(nearly, positions), (Order{0, 1}));
    EXPECT_EQ(sorted(nearly, positions, {0, 1}), (Order{1, 0}));
}

TEST(DepthSorter, NeverCallsDepthsEqual)
{
    float depths[] = {1.0f, 2.0f, 1.0f};
    const unsigned places[] = {0, 1, 2};
    DepthSorter::fsPositionXformZ = depths;
    for (const auto& [a, b, answer] : {std::tuple(0, 1, -1), {1, 0, 1}, {0, 2, -1}, {2, 0, -1}})
        EXPECT_EQ(DepthSorter::depthCompareFunction(places + a, places + b), answer);
    DepthSorter::fsPositionXformZ = nullptr;
}
