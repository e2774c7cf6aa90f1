#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/Frustum.h>

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <numbers>
#include <random>

using krLinear::PointFlt;

namespace
{

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

const AABoundingBox kUnitBox({0, 0, 0}, {1, 1, 1});
const AABoundingBox kInvertedBox({1, 1, 1}, {0, 0, 0});
const BoundingSphere kUnitSphere({0, 0, 0}, 1);

/// The relations that hold, as letters: o outside, i inside, x intersect.
template <class Volume, class Argument>
std::string relations(const Volume& volume, const Argument& argument)
{
    std::string letters;
    for (const auto& [type, letter] :
         {std::pair(IBounds::Outside, 'o'), std::pair(IBounds::Inside, 'i'), std::pair(IBounds::Intersect, 'x')})
        if (volume.classify(type, argument))
            letters += letter;
    EXPECT_FALSE(volume.classify(static_cast<IBounds::IntersectType>(3), argument));
    return letters;
}

template <class Volume, class Argument>
struct Relation
{
    const char* what;
    Volume volume;
    Argument argument;
    const char* expected;
};

template <class Volume, class Argument>
void expectRelations(const std::vector<Relation<Volume, Argument>>& table)
{
    for (const auto& row : table)
        EXPECT_EQ(relations(row.volume, row.argument), row.expected) << row.what;
}

std::array<std::uint32_t, 6> bits(const AABoundingBox& box)
{
    const auto [a, b, c] = box.min();
    const auto [d, e, f] = box.max();
    return {std::bit_cast<std::uint32_t>(a), std::bit_cast<std::uint32_t>(b), std::bit_cast<std::uint32_t>(c),
            std::bit_cast<std::uint32_t>(d), std::bit_cast<std::uint32_t>(e), std::bit_cast<std::uint32_t>(f)};
}

} // namespace

TEST(BoundingBox, ClassifiesPoints)
{
    const AABoundingBox endless({-kInf, -kInf, -kInf}, {kInf, kInf, kInf});
    expectRelations<AABoundingBox, PointFlt>({
        {"within", kUnitBox, {0.5f, 0.5f, 0.5f}, "i"},
        {"on a face", kUnitBox, {1, 0.5f, 0.5f}, "ix"},
        {"beyond x", kUnitBox, {2, 0.5f, 0.5f}, "o"},
        {"x face decides before z", kUnitBox, {1, 2, 1}, "o"},
        {"NaN is nowhere", kUnitBox, {kNaN, 0.5f, 0.5f}, ""},
        {"inverted", kInvertedBox, {0.5f, 0.5f, 0.5f}, "o"},
        {"point box", {{1, 2, 3}, {1, 2, 3}}, {1, 2, 3}, "ix"},
        {"endless", endless, {1, 2, 3}, "i"},
        {"end of the endless", endless, {kInf, 0, 0}, "ix"},
    });
}

TEST(BoundingBox, SurfaceOfZFacesIsHeldAgainstTheNextAxis)
{
    const AABoundingBox box({0, 0, 0}, {1, 2, 3});
    EXPECT_EQ(relations(box, PointFlt(1.5f, 0.5f, 0)), "ox") << "x goes up to max.y";
    EXPECT_EQ(relations(box, PointFlt(0.5f, 2.5f, 3)), "ox") << "y goes up to max.z";
    EXPECT_EQ(relations(box, PointFlt(2.5f, 0.5f, 0)), "o");
    EXPECT_EQ(relations(AABoundingBox({0, 0, 0}, {3, 1, 1}), PointFlt(2, 0.5f, 1)), "i") << "max.y ends it early";
}

TEST(BoundingBox, ClassifiesBoxes)
{
    expectRelations<AABoundingBox, AABoundingBox>({
        {"same", kUnitBox, kUnitBox, "ix"},
        {"within", kUnitBox, {{0.2f, 0.2f, 0.2f}, {0.8f, 0.8f, 0.8f}}, "ix"},
        {"around", kUnitBox, {{-1, -1, -1}, {2, 2, 2}}, "x"},
        {"touching a corner", kUnitBox, {{1, 1, 1}, {2, 2, 2}}, "x"},
        {"apart in y only", kUnitBox, {{0, 1.5f, 0}, {1, 2, 1}}, "o"},
        {"never grown", kUnitBox, AABoundingBox(), "i"},
        {"inverted with itself", kInvertedBox, kInvertedBox, "i"},
        {"endless", kUnitBox, {{-kInf, -kInf, -kInf}, {kInf, kInf, kInf}}, "x"},
    });
}

TEST(BoundingBox, MeetsSpheresAndNothingElse)
{
    const std::vector<Relation<AABoundingBox, BoundingSphere>> table{
        {"well inside", kUnitBox, {{0.5f, 0.5f, 0.5f}, 0.1f}, "x"},
        {"touching a face", kUnitBox, {{3, 0.5f, 0.5f}, 2}, "x"},
        {"touching an edge", kUnitBox, {{4, 5, 0.5f}, 5}, "x"},
        {"past a corner", kUnitBox, {{2, 2, 2}, 1.7f}, "o"},
        {"negative radius counts as its size", kUnitBox, {{1.5f, 0.5f, 0.5f}, -1}, "x"},
    };
    for (const auto& row : table)
    {
        const std::string expected = row.expected == std::string("o") ? "" : row.expected;
        EXPECT_EQ(relations(row.volume, row.argument), expected) << row.what;
        EXPECT_EQ(relations(row.argument, row.volume), expected) << row.what << ", asked the sphere";
    }
    const Frustum frustum{krLinear::ProjMatrix(1.0)};
    EXPECT_EQ(relations(kUnitBox, frustum), "");
    EXPECT_EQ(relations(kUnitSphere, frustum), "");
}

TEST(BoundingSphere, ClassifiesPoints)
{
    expectRelations<BoundingSphere, PointFlt>({
        {"center", kUnitSphere, {0, 0, 0}, "i"},
        {"on it", kUnitSphere, {0, 1, 0}, "x"},
        {"a hair outside", kUnitSphere, {1.000002f, 0, 0}, "ox"},
        {"a hair inside", kUnitSphere, {0.999998f, 0, 0}, "ix"},
        {"outside", kUnitSphere, {0, 0, 2}, "o"},
        {"small spheres are all surface", {{0, 0, 0}, 0.001f}, {0, 0, 0}, "ix"},
        {"endless", {{0, 0, 0}, kInf}, {3, 4, 5}, "i"},
        {"NaN is nowhere", kUnitSphere, {0, kNaN, 0}, ""},
    });
}

TEST(BoundingSphere, ClassifiesSpheres)
{
    expectRelations<BoundingSphere, BoundingSphere>({
        {"same", kUnitSphere, kUnitSphere, "ix"},
        {"touching from inside", {{0, 0, 0}, 3}, {{0, 2, 0}, 1}, "ix"},
        {"poking out", {{0, 0, 0}, 3}, {{0, 2.5f, 0}, 1}, "x"},
        {"touching from outside", kUnitSphere, {{3, 4, 0}, 4}, "x"},
        {"apart", kUnitSphere, {{3, 4, 0}, 3.9f}, "o"},
        {"far beyond what floats square", kUnitSphere, {{3e30f, 0, 0}, 1}, "o"},
    });
}

TEST(BoundingBox, GrowsFromNothing)
{
    AABoundingBox box;
    EXPECT_FALSE(box.isValid());
    EXPECT_EQ(box.center(), PointFlt(0, 0, 0));

    box.addPoint({1, 2, 3});
    EXPECT_TRUE(box.isValid());
    EXPECT_EQ(box.min(), PointFlt(1, 2, 3));
    EXPECT_EQ(box.max(), PointFlt(1, 2, 3));
    EXPECT_EQ(box.radius(), 0.0f);

    box += AABoundingBox({-1, 0, 3}, {0, 5, 7});
    EXPECT_EQ(box.min(), PointFlt(-1, 0, 3));
    EXPECT_EQ(box.max(), PointFlt(1, 5, 7));
    EXPECT_EQ((kUnitBox + kUnitSphere).min(), PointFlt(-1, -1, -1));
    EXPECT_FLOAT_EQ((kUnitBox + kUnitSphere).radius(), std::numbers::sqrt3_v<float>);

    box.setInvalid();
    EXPECT_EQ(bits(box), bits(AABoundingBox()));
}

TEST(BoundingBox, ManyPointsGrowItAsOneByOne)
{
    std::mt19937 random(3);
    const auto number = [&random]
    {
        constexpr float kSpecial[] = {0.0f, -0.0f, kNaN, kInf, -kInf, std::numeric_limits<float>::max(), 1e-40f, -1.0f};
        const unsigned kind = random() % 16;
        return kind < 8 ? kSpecial[kind] : std::uniform_real_distribution<float>(-2, 1)(random);
    };
    const auto zeroOr = [&random](float value)
    { return random() % 2 == 0 ? std::copysign(0.0f, random() % 2 == 0 ? 1.0f : -1.0f) : value; };
    for (unsigned round = 0; round < 3000; ++round)
    {
        AABoundingBox stepwise;
        if (round % 3 == 1)
            stepwise.set({number(), number(), number()}, {number(), number(), number()});
        AABoundingBox together = stepwise;
        std::vector<PointFlt> points(random() % 40);
        for (PointFlt& point : points)
            point = round % 2 == 0 ? PointFlt(number(), number(), number())
                                   : PointFlt(zeroOr(1), zeroOr(-1), zeroOr(number()));
        for (const PointFlt& point : points)
            stepwise.addPoint(point);
        together.addPoints(points);
        ASSERT_EQ(bits(together), bits(stepwise)) << "round " << round << ", " << points.size() << " points";
    }
}

TEST(BoundingBox, MappedBoxIsThatOfItsMappedCorners)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> number(-4, 4);
    for (int round = 0; round < 200; ++round)
    {
        krLinear::AffineMatrix matrix(number(random));
        matrix.rotate(number(random), {number(random), number(random), number(random)});
        matrix.translate({number(random), number(random), number(random)});
        AABoundingBox box;
        box.addPoints({{number(random), number(random), number(random)}, {number(random), number(random), 0}});
        AABoundingBox corners;
        for (const float x : {box.min().x, box.max().x})
            for (const float y : {box.min().y, box.max().y})
                for (const float z : {box.min().z, box.max().z})
                {
                    const krLinear::Point mapped = matrix.preMult({x, y, z});
                    corners.addPoint({mapped.x, mapped.y, mapped.z});
                }
        box.transform(matrix);
        EXPECT_LT(krLinear::distance(box.min(), corners.min()), 1e-4);
        EXPECT_LT(krLinear::distance(box.max(), corners.max()), 1e-4);
    }

    krLinear::AffineMatrix moved;
    moved.translate({1, 2, 3});
    AABoundingBox empty;
    empty.transform(moved);
    EXPECT_EQ(bits(empty), bits(AABoundingBox())) << "an empty box stays as it is";
}

TEST(BoundingBox, CopiesTheCornersThatItsSourceShows)
{
    class Padded : public AABoundingBox
    {
    public:
        using AABoundingBox::AABoundingBox;
        [[nodiscard]] PointFlt max() const override { return {9, 9, 9}; }
    };
    const Padded padded(PointFlt(0, 0, 0), PointFlt(1, 1, 1));
    EXPECT_EQ(AABoundingBox(padded).max(), PointFlt(9, 9, 9));
    EXPECT_EQ(AABoundingBox(BoundingSphere({0, 0, 0}, -1)).min(), PointFlt(1, 1, 1)) << "validity is not asked";
}

TEST(BoundingSphere, GrowsHalfAsFastAsItMoves)
{
    struct Growth
    {
        const char* what;
        BoundingSphere sphere;
        PointFlt point, center;
        float radius;
    };
    const Growth table[] = {
        {"outside", kUnitSphere, {3, 0, 0}, {2, 0, 0}, 2},
        {"inside", kUnitSphere, {0.5f, 0, 0}, {0, 0, 0}, 1},
        {"on it", kUnitSphere, {0, 0, -1}, {0, 0, 0}, 1},
        {"first point of a default sphere", {}, {0, 8, 0}, {0, 8, 0}, 4},
        {"invalid, near", {{0, 0, 0}, -1}, {0.5f, 0, 0}, {0, 0, 0}, -1},
        {"invalid, far", {{1, 0, 0}, -1}, {5, 0, 0}, {6, 0, 0}, 1.5f},
        {"NaN", kUnitSphere, {kNaN, 0, 0}, {0, 0, 0}, 1},
    };
    for (const Growth& row : table)
    {
        BoundingSphere sphere = row.sphere;
        sphere.addPoint(row.point);
        EXPECT_EQ(sphere.center(), row.center) << row.what;
        EXPECT_EQ(sphere.radius(), row.radius) << row.what;
    }
}

TEST(BoundingSphere, TakesInOtherVolumes)
{
    const BoundingSphere sum = kUnitSphere + AABoundingBox({2, 2, 2}, {4, 4, 4});
    EXPECT_EQ(sum.center(), PointFlt(1.5f, 1.5f, 1.5f)) << "the mean of both centers";
    EXPECT_FLOAT_EQ(sum.radius(), 1 + std::numbers::sqrt3_v<float>) << "both radii";
    const BoundingSphere none{static_cast<const IBoundingPlanes&>(BoundingSphere({1, 2, 3}, -1))};
    EXPECT_EQ(none.center(), PointFlt(0, 0, 0));
    EXPECT_EQ(none.radius(), 0.0f);
}

TEST(BoundingSphere, MapsByTheLongestAxis)
{
    krLinear::AffineMatrix matrix;
    matrix(0, 0) = 2;
    matrix(1, 0) = 3; // row 1 is (3, 1, 4)
    matrix(1, 2) = 4;
    matrix(3, 1) = 10;
    BoundingSphere sphere({1, 1, 0}, 2);
    sphere.transform(matrix);
    EXPECT_EQ(sphere.center(), PointFlt(5, 11, 4));
    EXPECT_FLOAT_EQ(sphere.radius(), 2 * std::sqrt(26.0f));
}
