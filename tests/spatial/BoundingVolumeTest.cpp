#include <krender/core/Ref.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/Frustum.h>
#include <krender/spatial/IBoundingPlanes.h>
#include <krender/spatial/IBounds.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

using krLinear::AffineMatrix;
using krLinear::PointFlt;

namespace
{

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kMost = std::numeric_limits<float>::max();
constexpr float PointFlt::*kAxes[] = {&PointFlt::x, &PointFlt::y, &PointFlt::z};

const AABoundingBox gUnitBox({0, 0, 0}, {1, 1, 1});
const AABoundingBox gInvertedBox({1, 1, 1}, {0, 0, 0});
const AABoundingBox gBox123({0, 0, 0}, {1, 2, 3});
const AABoundingBox gEndless({-kInf, -kInf, -kInf}, {kInf, kInf, kInf});
const BoundingSphere gUnitSphere({0, 0, 0}, 1);

/// The relations that hold, as letters: o outside, i inside, x on the surface or meeting.
template <class Volume, class Argument>
std::string relations(const Volume& volume, const Argument& argument)
{
    std::string letters;
    for (const int type : {0, 1, 2, 3})
        if (volume.classify(static_cast<IBounds::IntersectType>(type), argument))
            letters += "oix?"[type];
    return letters;
}

/// Checks rows of a name, a volume, an argument of its classify, and the relations that hold.
template <class Volume, class Argument>
void expectRelations(const std::vector<std::tuple<const char*, Volume, Argument, std::string>>& table)
{
    for (const auto& [what, volume, argument, expected] : table)
        EXPECT_EQ(relations(volume, argument), expected) << what;
}

std::array<std::uint32_t, 6> bits(const AABoundingBox& box)
{
    return std::bit_cast<std::array<std::uint32_t, 6>>(std::array{box.min(), box.max()});
}

const AffineMatrix gFarAndBack({1, 0, 0, 1, 1, 0, 0, 0, 1, -16777216, 0, 0});

template <class Volume>
void expectMapped(const char* what, const Volume& volume, AffineMatrix matrix, const Volume& expected)
{
    Volume inPlace = volume;
    inPlace.transform(matrix);
    for (const Volume& mapped : {inPlace, volume.transformed(matrix)})
        EXPECT_TRUE(mapped.min() == expected.min() && mapped.max() == expected.max()) << what;
}

} // namespace

TEST(BoundingBox, ClassifiesPoints)
{
    expectRelations<AABoundingBox, PointFlt>({
        {"within", gUnitBox, {0.5f, 0.5f, 0.5f}, "i"},
        {"beyond the x face in z", gUnitBox, {0, 0.5f, 2}, "o"},
        {"beyond the y face in z", gUnitBox, {0.5f, 0, -1}, "o"},
        {"y face decides before z", gBox123, {0.5f, 2, 3}, "ix"},
        {"x up to max.y on a z face", gBox123, {1.5f, 0.5f, 0}, "ox"},
        {"y up to max.z on a z face", gBox123, {0.5f, 2.5f, 3}, "ox"},
        {"x past max.y on a z face", gBox123, {2.5f, 0.5f, 0}, "o"},
        {"max.y ends the z face early", {{0, 0, 0}, {3, 1, 1}}, {2, 0.5f, 1}, "i"},
        {"x below min on a z face", gUnitBox, {-0.5f, 0.5f, 1}, "o"},
        {"y below min on a z face", gUnitBox, {0.5f, -0.5f, 1}, "o"},
        {"inverted", gInvertedBox, {0.5f, 0.5f, 0.5f}, "o"},
        {"endless", gEndless, {1, 2, 3}, "i"},
        {"NaN is nowhere", gUnitBox, {kNaN, 0.5f, 0.5f}, ""},
    });
    for (float PointFlt::*const axis : kAxes)
        for (const auto& [value, expected] : {std::pair(-0.1f, "o"), {0.0f, "ix"}, {1.0f, "ix"}, {1.1f, "o"}})
        {
            PointFlt point(0.5f, 0.5f, 0.5f);
            point.*axis = value;
            EXPECT_EQ(relations(gUnitBox, point), expected) << point.x << " " << point.y << " " << point.z;
        }
}

TEST(BoundingBox, ClassifiesBoxes)
{
    expectRelations<AABoundingBox, AABoundingBox>({
        {"same", gUnitBox, gUnitBox, "ix"},
        {"within", gUnitBox, {{0.2f, 0.2f, 0.2f}, {0.8f, 0.8f, 0.8f}}, "ix"},
        {"touching a corner", gUnitBox, {{1, 1, 1}, {2, 2, 2}}, "x"},
        {"never grown", gUnitBox, AABoundingBox(), "i"},
        {"endless", gUnitBox, gEndless, "x"},
    });
    for (float PointFlt::*const axis : kAxes)
        for (const auto& [low, high, expected] :
             {std::tuple(-2.0f, -1.0f, "o"), {-1, 0, "x"}, {-1, 1, "x"}, {0, 2, "x"}, {1, 2, "x"}, {2, 3, "o"}})
        {
            PointFlt min = gUnitBox.min();
            PointFlt max = gUnitBox.max();
            min.*axis = low;
            max.*axis = high;
            EXPECT_EQ(relations(gUnitBox, AABoundingBox(min, max)), expected) << low << " to " << high;
        }
}

TEST(BoundingBox, MeetsSpheresAndNothingElse)
{
    const std::vector<std::tuple<const char*, AABoundingBox, BoundingSphere, std::string>> table{
        {"well inside", gUnitBox, {{0.5f, 0.5f, 0.5f}, 0.1f}, "x"},
        {"touching a face", gUnitBox, {{3, 0.5f, 0.5f}, 2}, "x"},
        {"touching an edge", gUnitBox, {{4, 5, 0.5f}, 5}, "x"},
        {"touching a corner", gUnitBox, {{-2, -3, -6}, 7}, "x"},
        {"past a corner below", gUnitBox, {{-2, -3, -6}, 6.99f}, ""},
        {"past a corner above", gUnitBox, {{2, 2, 2}, 1.7f}, ""},
        {"negative radius counts as its size", gUnitBox, {{1.5f, 0.5f, 0.5f}, -1}, "x"},
        {"inverted: both ends of an axis count", gInvertedBox, {{0.5f, 0.5f, 0.5f}, 1.2f}, ""}, // 6 times 0.5 squared
        {"inverted, touching", {{3, 0, 0}, {-4, 0, 0}}, {{0, 0, 0}, 5}, "x"},
    };
    expectRelations(table);
    for (const auto& [what, box, sphere, expected] : table)
        EXPECT_EQ(relations(sphere, box), expected) << what << ", asked the sphere";
    const Frustum frustum{krLinear::ProjMatrix(1.0)};
    EXPECT_EQ(relations(gUnitBox, frustum) + relations(gUnitSphere, frustum), "");
}

TEST(BoundingSphere, ClassifiesPoints)
{
    expectRelations<BoundingSphere, PointFlt>({
        {"center", gUnitSphere, {0, 0, 0}, "i"},
        {"on it", gUnitSphere, {0, 1, 0}, "x"},
        {"a hair outside", gUnitSphere, {1.000002f, 0, 0}, "ox"},
        {"a hair inside", gUnitSphere, {0.999998f, 0, 0}, "ix"},
        {"10 hairs outside", gUnitSphere, {1.00001f, 0, 0}, "o"},
        {"10 hairs inside", gUnitSphere, {0.99999f, 0, 0}, "i"},
        {"small spheres are all surface", {{0, 0, 0}, 0.001f}, {0, 0, 0}, "ix"},
        {"endless", {{0, 0, 0}, kInf}, {3, 4, 5}, "i"},
        {"NaN is nowhere", gUnitSphere, {0, kNaN, 0}, ""},
    });
}

TEST(BoundingSphere, ClassifiesSpheres)
{
    expectRelations<BoundingSphere, BoundingSphere>({
        {"touching from inside", {{0, 0, 0}, 3}, {{0, 2, 0}, 1}, "ix"},
        {"poking out", {{0, 0, 0}, 3}, {{0, 2.5f, 0}, 1}, "x"},
        {"around", gUnitSphere, {{0, 0, 0.5f}, 2}, "x"},
        {"touching from outside", gUnitSphere, {{3, 4, 0}, 4}, "x"},
        {"apart", gUnitSphere, {{3, 4, 0}, 3.9f}, "o"},
        {"far beyond what floats square", gUnitSphere, {{3e30f, 0, 0}, 1}, "o"},
    });
}

TEST(BoundingBox, GrowsFromNothing)
{
    AABoundingBox box;
    EXPECT_EQ(box.center(), PointFlt(0, 0, 0));
    EXPECT_EQ(box.radius(), 0.0f);
    box.addPoint({1, 2, 3});
    EXPECT_EQ(bits(box), bits({{1, 2, 3}, {1, 2, 3}}));
    EXPECT_EQ(box.radius(), 0.0f);
    box += AABoundingBox({-1, 0, 3}, {0, 5, 7});
    EXPECT_EQ(bits(box), bits({{-1, 0, 3}, {1, 5, 7}}));
    EXPECT_EQ(box.center(), PointFlt(0, 2.5f, 5));
    EXPECT_FLOAT_EQ(box.radius(), 3.354102f) << "half of the diagonal of 2, 5 and 4";
    EXPECT_EQ(bits(gUnitBox + BoundingSphere({3, 4, 5}, 4)), bits({{-1, 0, 0}, {7, 8, 9}}));
    box.setInvalid();
    EXPECT_EQ(bits(box), bits({{kMost, kMost, kMost}, {-kMost, -kMost, -kMost}}));
}

TEST(BoundingBox, ManyPointsGrowItAsOneByOne)
{
    // All numbers, or a part of them that leaves bounds of 0 or -0.
    constexpr float kNumbers[] = {-kInf, -1, -1e-40f, -0.0f, 0, kNaN, 0.25f, 3, 3e38f, kInf};
    std::mt19937 random(3);
    for (unsigned round = 0; round < 3000; ++round)
    {
        const auto [first, count] = std::to_array<std::array<unsigned, 2>>({{0, 10}, {1, 5}, {3, 5}})[round % 3];
        const auto number = [&, f = first, n = count] { return kNumbers[f + random() % n]; };
        const auto point = [&number] { return PointFlt(number(), number(), number()); };
        AABoundingBox stepwise;
        if (random() % 2 == 0)
            stepwise.set(point(), point());
        AABoundingBox together = stepwise;
        std::vector<PointFlt> points(random() % 40);
        std::ranges::generate(points, point);
        for (const PointFlt& p : points)
            stepwise.addPoint(p);
        together.addPoints(points);
        ASSERT_EQ(bits(together), bits(stepwise)) << "round " << round << ", " << points.size() << " points";
    }
}

TEST(BoundingBox, MapsToTheBoxOfItsMappedCorners)
{
    const AABoundingBox box({1, 2, 3}, {2, 4, 7});
    const AffineMatrix mixed({1, -2, 0, 0, 3, -1, 2, 0, 1, 10, 20, 30});
    expectMapped("mixed signs", box, mixed, {{17, 22, 29}, {26, 30, 35}});
    expectMapped("mirrored", box, AffineMatrix(-2), {{-4, -8, -14}, {-2, -4, -6}});
    expectMapped("sums beyond float", {{16777216, 1, 0}, {16777216, 1, 0}}, gFarAndBack,
                 AABoundingBox({1, 1, 0}, {1, 1, 0}));
    expectMapped("an invalid box stays", AABoundingBox(), mixed, AABoundingBox());
    expectMapped("an inverted box stays", gInvertedBox, mixed, gInvertedBox);
}

TEST(BoundingVolumes, AreValidByTheirNumbers)
{
    for (const PointFlt& min : {PointFlt(1.1f, 0, 0), {0, 1.1f, 0}, {0, 0, 1.1f}})
        EXPECT_FALSE(AABoundingBox(min, {1, 1, 1}).isValid());
    EXPECT_TRUE(AABoundingBox({1, 1, 1}, {1, 1, 1}).isValid());
    EXPECT_FALSE(BoundingSphere().isValid()) << "a radius of 0";
    EXPECT_TRUE(BoundingSphere({0, 0, 0}, 1e-40f).isValid());
}

TEST(BoundingBox, CopiesTheCornersThatItsSourceReturns)
{
    struct Padded : AABoundingBox
    {
        [[nodiscard]] PointFlt min() const override { return {-9, -9, -9}; }
        [[nodiscard]] PointFlt max() const override { return {9, 9, 9}; }
    };
    EXPECT_EQ(bits(AABoundingBox(static_cast<const AABoundingBox&>(Padded()))), bits({{-9, -9, -9}, {9, 9, 9}}));
    EXPECT_EQ(bits(AABoundingBox(BoundingSphere({0, 0, 0}, -1))), bits({{1, 1, 1}, {-1, -1, -1}})) << "invalid or not";
}

TEST(BoundingVolumes, DoNotReadIndexLists)
{
    const auto list = Ref<GeometryDataIndex>::adopt(new GeometryDataIndex(GeometryDataIndex::points, 0, nullptr));
    AABoundingBox box = gUnitBox;
    BoundingSphere sphere = gUnitSphere;
    box.set(*list);
    sphere.set(*list);
    EXPECT_EQ(bits(box), bits(gUnitBox));
    EXPECT_EQ(bits(AABoundingBox(sphere)), bits(AABoundingBox(gUnitSphere)));
    EXPECT_EQ(AABoundingBox(*list).boundsType(), 4);
    EXPECT_EQ(BoundingSphere(*list).boundsType(), 5);
}

TEST(BoundingSphere, GrowsHalfAsFastAsItMoves)
{
    const BoundingSphere rounding({6.5f, 3.75f, 5.25f}, 6.75f);
    const BoundingSphere rounded({-0x1.52318p-1f, 0x1.ab1f4cp+1f, 0x1.1e71bap+0f}, 0x1.5c6ed4p+3f);
    const std::vector<std::tuple<const char*, BoundingSphere, PointFlt, BoundingSphere>> table{
        {"outside", gUnitSphere, {3, 0, 0}, {{2, 0, 0}, 2}},
        {"inside", gUnitSphere, {0.5f, 0, 0}, gUnitSphere},
        {"on it", gUnitSphere, {0, 0, -1}, gUnitSphere},
        {"first point of a default sphere", {}, {0, 8, 0}, {{0, 8, 0}, 4}},
        {"rounded in float, factor by factor", rounding, {-6.5f, 3, -2.25f}, rounded},
        {"invalid, near", {{0, 0, 0}, -1}, {0.5f, 0, 0}, {{0, 0, 0}, -1}},
        {"invalid, far", {{1, 0, 0}, -1}, {5, 0, 0}, {{6, 0, 0}, 1.5f}},
        {"NaN", gUnitSphere, {kNaN, 0, 0}, gUnitSphere},
    };
    for (const auto& [what, old, point, expected] : table)
    {
        BoundingSphere sphere = old;
        sphere.addPoint(point);
        EXPECT_TRUE(sphere.center() == expected.center() && sphere.radius() == expected.radius()) << what;
    }
}

TEST(BoundingSphere, AddsPointsInOrderThroughAddPoint)
{
    struct Doubling : BoundingSphere
    {
        void addPoint(const PointFlt& point) override { BoundingSphere::addPoint({2 * point.x, point.y, point.z}); }
    };
    Doubling sphere;
    sphere.setRadius(1);
    sphere.addPoints({{1.5f, 0, 0}, {5, 0, 0}, {3, 0, 0}});
    EXPECT_EQ(sphere.radius(), 5.0f);
    sphere.setInvalid();
    EXPECT_EQ(sphere.center(), PointFlt(8, 0, 0));
    EXPECT_EQ(sphere.radius(), -1.0f);
}

TEST(BoundingSphere, AddsOtherVolumesByTheMeanOfTheCenters)
{
    const AABoundingBox box({1, 1, -1}, {5, 7, 11});
    const BoundingSphere sum = gUnitSphere + box;
    EXPECT_EQ(bits(AABoundingBox(sum)), bits({{-6.5f, -6, -5.5f}, {9.5f, 10, 10.5f}}));
    EXPECT_EQ(bits(AABoundingBox(BoundingSphere(box))), bits({{-4, -3, -2}, {10, 11, 12}}));
    const BoundingSphere none{static_cast<const IBoundingPlanes&>(BoundingSphere({1, 2, 3}, -1))};
    EXPECT_EQ(bits(AABoundingBox(none)), bits({{0, 0, 0}, {0, 0, 0}})) << "of an invalid volume";
}

TEST(BoundingSphere, MapsByTheLongestRow)
{
    const BoundingSphere sphere({1, 1, 2}, 2);
    expectMapped("row 0", sphere, AffineMatrix({2, 3, 6, 0, 1, 0, 0, 0, 1, 0, 10, 0}), {{2, 14, 8}, 14});
    expectMapped("row 1", sphere, AffineMatrix({1, 0, 0, 6, 2, 3, 0, 0, 1, 10, 0, 0}), {{17, 2, 5}, 14});
    expectMapped("row 2", sphere, AffineMatrix({1, 0, 0, 0, 1, 0, 3, 6, -2, 0, 0, 10}), {{7, 13, 6}, 14});
    expectMapped("sums beyond float", {{16777216, 1, 0}, 0}, gFarAndBack, BoundingSphere({1, 1, 0}, 0));
    expectMapped("an invalid sphere too", {{1, 0, 0}, -1}, AffineMatrix(3), BoundingSphere({3, 0, 0}, -3));
}
