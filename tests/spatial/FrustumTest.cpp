#include "krender/spatial/private/FrustumArrays.h"

#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/Frustum.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

using krLinear::PointFlt;
using krLinear::ProjMatrix;

// In FastMathHost.cpp.
bool hostTestsSphere(const Frustum& frustum, double x, double y, double z, double radius);
bool hostTestsPoint(const Frustum& frustum, double x, double y, double z);
bool hostFindsValid(const AABoundingBox& box, const BoundingSphere& sphere);

namespace
{

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

double valueAt(const Frustum::Plane& p, double x, double y, double z) { return p.a * x + p.b * y + p.c * z + p.d; }

// The tests as they read: plane after plane, corner after corner.

bool plainTest(const Frustum& frustum, const BoundingSphere& s)
{
    const PointFlt c = s.center();
    return std::ranges::none_of(frustum.planes(),
                                [&](const auto& p) { return -s.radius() >= valueAt(p, c.x, c.y, c.z); });
}

bool plainTest(const Frustum& frustum, const AABoundingBox& box)
{
    const auto inFrontOf = [low = box.min(), high = box.max()](const Frustum::Plane& p)
    {
        for (unsigned corner = 0; corner < 8; ++corner)
            if (valueAt(p, corner & 1 ? high.x : low.x, corner & 2 ? high.y : low.y, corner & 4 ? high.z : low.z) > 0.0)
                return true;
        return false;
    };
    return std::ranges::all_of(frustum.planes(), inFrontOf);
}

/// Numbers of every kind, and many that land exactly on planes.
class Numbers
{
public:
    explicit Numbers(unsigned oddPercent) : fOddPercent(oddPercent) {}

    double operator()()
    {
        constexpr double kOdd[] = {0.0, -0.0, kInf, -kInf, kNaN, 1e300, -1e300, 3e38, -3e38, 1e-310, 1.0, -1.0};
        if (chance(fOddPercent))
            return kOdd[fRandom() % std::size(kOdd)];
        if (chance(25))
            return static_cast<double>(fRandom() % 9) / 4.0 - 1.0;
        return std::uniform_real_distribution<double>(-3, 3)(fRandom);
    }
    PointFlt point() { return {(*this)(), (*this)(), (*this)()}; }
    bool chance(unsigned percent) { return fRandom() % 100 < percent; }

    /// The unit cube, or a map with elements of every kind.
    Frustum frustum()
    {
        std::array<double, 16> elements{};
        std::ranges::generate(elements, std::ref(*this));
        return Frustum(chance(25) ? ProjMatrix(1.0) : ProjMatrix(elements));
    }

private:
    std::mt19937 fRandom{23};
    unsigned fOddPercent;
};

/// Compares the tests of an array, with outputs of every length, and of its volumes one by one to plain answers.
template <class Volume, class TestArray>
std::size_t expectPlainAnswers(const Frustum& frustum, const std::vector<Volume>& volumes, TestArray testArray)
{
    std::vector<std::uint8_t> expected;
    for (const Volume& volume : volumes)
    {
        expected.push_back(plainTest(frustum, volume));
        EXPECT_EQ(frustum.classify(IBounds::Intersect, volume), expected.back() == 1);
    }
    for (std::size_t length = 0; length <= volumes.size() + 1; ++length)
    {
        constexpr std::uint8_t kUntouched = 7;
        std::vector<std::uint8_t> visible(volumes.size() + 8, kUntouched);
        testArray(volumes, std::span(visible).first(length));
        std::vector<std::uint8_t> wanted(expected.begin(), expected.begin() + std::min(length, volumes.size()));
        wanted.resize(visible.size(), kUntouched);
        EXPECT_EQ(visible, wanted) << volumes.size() << " volumes, " << length << " answers";
    }
    return std::ranges::count(expected, 1);
}

} // namespace

TEST(Frustum, EdgesOfTheTests)
{
    const Frustum cube{ProjMatrix(1.0)};
    EXPECT_FALSE(cube.sphereInFrustum(2, 0, 0, 1)) << "touching from outside";
    EXPECT_TRUE(cube.sphereInFrustum(2, 0, 0, 1.5));
    EXPECT_FALSE(cube.boxInFrustum(1, 0, 0, 2, 1, 1)) << "touching from outside";
    EXPECT_FALSE(cube.boxInFrustum(-1, 2, -1, 1, 3, 1)) << "beyond one plane";
    EXPECT_TRUE(cube.boxInFrustum(0.9, 0.9, 0, 5, 5, 0.1));
}

TEST(Frustum, AnswersAgreeWithPlainTestsForEverySetOfRegisters)
{
    for (const bool wide : {false, true})
        for (const unsigned oddPercent : {0u, 1u, 20u})
        {
            SCOPED_TRACE(wide ? "wide registers" : "narrow registers");
            if (wide && !krSpatial::hasWideRegisters())
                GTEST_SKIP() << "this processor has no wide registers";
            Numbers number(oddPercent);
            std::size_t inside = 0;
            for (std::size_t round = 0; round < 1'500 && !HasFailure(); ++round)
            {
                const Frustum frustum = number.frustum();
                std::vector<BoundingSphere> spheres;
                std::vector<AABoundingBox> boxes;
                for (std::size_t i = 0; i < round % 11; ++i)
                {
                    const PointFlt min = number.point();
                    PointFlt max = number.point();
                    if (number.chance(60)) // in order, as real boxes are
                        max = {std::max(min.x, max.x), std::max(min.y, max.y), std::max(min.z, max.z)};
                    spheres.emplace_back(min, max.x);
                    boxes.emplace_back(min, max);
                }
                inside += expectPlainAnswers(frustum, spheres,
                                             [&](const auto& volumes, auto visible)
                                             { krSpatial::classifySpheres(frustum, volumes, visible, wide); });
                inside += expectPlainAnswers(frustum, boxes,
                                             [&](const auto& volumes, auto visible)
                                             { krSpatial::classifyBoxes(frustum, volumes, visible, wide); });
                expectPlainAnswers(frustum, spheres, std::bind_front(&Frustum::classifySpheres, &frustum));
                expectPlainAnswers(frustum, boxes, std::bind_front(&Frustum::classifyBoxes, &frustum));
            }
            EXPECT_GT(inside, 1000u) << "the volumes must not all be outside";
        }
}

TEST(Frustum, FlagsOfTheHostChangeNoAnswer)
{
    std::mt19937 random(7);
    unsigned inFront = 0;
    for (unsigned round = 0; round < 3000; ++round)
    {
        krLinear::AffineMatrix toCube;
        toCube.rotate(round, {1, 2, 3});
        toCube.translate({0.3, -0.7, 0.2});
        const Frustum frustum{ProjMatrix(toCube)};
        // A point on one plane, up to rounding, and a sphere that touches the plane from outside, exactly.
        constexpr int kSides[] = {1, -1, -1, 1, 1, -1};
        const unsigned side = round % 6;
        const Frustum::Plane plane = frustum.planes()[side];
        std::array<double, 3> on{std::uniform_real_distribution<double>(-0.9, 0.9)(random), -0.3, 0.6};
        std::swap(on[0], on[side / 2]);
        on[side / 2] = kSides[side];
        const auto [x, y, z] = toCube.inverse().preMult({on[0], on[1], on[2]});
        inFront += valueAt(plane, x, y, z) > 0.0;
        ASSERT_EQ(hostTestsPoint(frustum, x, y, z), valueAt(plane, x, y, z) > 0.0) << "round " << round;
        on[side / 2] *= 1.6;
        const auto [u, v, w] = toCube.inverse().preMult({on[0], on[1], on[2]});
        const double radius = -valueAt(plane, u, v, w);
        ASSERT_FALSE(hostTestsSphere(frustum, u, v, w, radius)) << "round " << round;
        ASSERT_TRUE(hostTestsSphere(frustum, u, v, w, std::nextafter(radius, 2.0))) << "round " << round;
    }
    EXPECT_GT(inFront, 300u) << "rounding must put some points in front of their plane";
    EXPECT_LT(inFront, 2700u) << "and some behind";
    EXPECT_TRUE(hostFindsValid(AABoundingBox({kNaN, 0, 0}, {0, 0, 0}), BoundingSphere({0, 0, 0}, kNaN)));
}

TEST(Frustum, CopyHasNoPlanes)
{
    const Frustum cube{ProjMatrix(1.0)};
    const auto expectEmpty = [](const Frustum& frustum)
    {
        EXPECT_FALSE(frustum.isValid());
        EXPECT_TRUE(frustum.sphereInFrustum(9, 9, 9, 0.1)) << "without planes every sphere of positive radius is in";
        EXPECT_FALSE(frustum.sphereInFrustum(0, 0, 0, 0));
        EXPECT_FALSE(frustum.boxInFrustum(-9, -9, -9, 9, 9, 9)) << "and no box";
    };
    const Frustum copy(cube); // NOLINT(performance-unnecessary-copy-initialization): the copy is what is tested
    expectEmpty(copy);
    EXPECT_EQ(copy.boundsType(), 6);
    Frustum assigned;
    EXPECT_EQ(assigned.boundsType(), -1);
    assigned = cube;
    EXPECT_TRUE(assigned.isValid());
    EXPECT_FALSE(assigned.sphereInFrustum(9, 9, 9, 0.1));
    assigned.setInvalid();
    expectEmpty(assigned);
}

TEST(Frustum, AnswersIntersectAlone)
{
    const Frustum cube{ProjMatrix(1.0)};
    for (const IBounds::IntersectType type : {IBounds::Outside, IBounds::Inside, IBounds::Intersect})
    {
        EXPECT_EQ(cube.classify(type, AABoundingBox({0, 0, 0}, {1, 1, 1})), type == IBounds::Intersect);
        EXPECT_EQ(cube.classify(type, BoundingSphere({0, 0, 0}, 1)), type == IBounds::Intersect);
    }
}
