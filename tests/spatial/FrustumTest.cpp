#include "krender/spatial/private/FrustumArrays.h"

#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/Frustum.h>
#include <krender/spatial/IBounds.h>

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
#include <vector>

using krLinear::PointFlt;
using krLinear::ProjMatrix;

// In FastMathHost.cpp.
bool hostTestsSphere(const Frustum& f, double x, double y, double z, double r);
bool hostTestsPoint(const Frustum& f, double x, double y, double z);
bool hostFindsValid(const AABoundingBox& box);
bool hostFindsValid(const BoundingSphere& sphere);

namespace
{

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

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

/// Quarters, which often land exactly on planes, and numbers of every kind.
class Numbers
{
public:
    explicit Numbers(unsigned oddPercent) : fOddPercent(oddPercent) {}
    double operator()()
    {
        constexpr double kOdd[] = {-0.0, kInf, -kInf, kNaN, 1e300, -1e300, 3e38, -3e38, 1e-310, 0.1, -0.3};
        const bool odd = below(100) < fOddPercent;
        return odd ? kOdd[below(std::size(kOdd))] : static_cast<double>(below(25)) / 4.0 - 3.0;
    }
    PointFlt point() { return {(*this)(), (*this)(), (*this)()}; }
    std::size_t below(std::size_t end) { return fRandom() % end; }

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
    for (const std::size_t length : {volumes.size(), volumes.size() / 2, volumes.size() + 1})
    {
        std::vector<std::uint8_t> visible(volumes.size() + 8, 7);
        testArray(volumes, std::span(visible).first(length));
        const std::size_t tested = std::min(length, volumes.size());
        std::vector<std::uint8_t> wanted(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(tested));
        wanted.resize(visible.size(), 7);
        EXPECT_EQ(visible, wanted) << volumes.size() << " volumes, " << length << " answers";
    }
    return static_cast<std::size_t>(std::ranges::count(expected, 1));
}

} // namespace

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
                std::array<double, 16> elements{};
                std::ranges::generate(elements, std::ref(number));
                const Frustum frustum(round % 4 == 0 ? ProjMatrix(1.0) : ProjMatrix(elements));
                std::vector<BoundingSphere> spheres;
                std::vector<AABoundingBox> boxes;
                for (std::size_t i = 0; i < round % 11; ++i)
                {
                    const PointFlt min = number.point();
                    PointFlt max = number.point();
                    if (number.below(5) < 3) // in order, as real boxes are
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
    unsigned inFront = 0;
    for (unsigned round = 0; round < 1000; ++round)
    {
        krLinear::AffineMatrix toCube;
        toCube.rotate(round, {1, 2, 3});
        const Frustum frustum{ProjMatrix(toCube)};
        const Frustum::Plane right = frustum.planes()[0];
        // A point on the plane, up to rounding, and a sphere beyond it that touches it exactly.
        const auto [x, y, z] = toCube.inverse().preMult({1, -0.3, 0.6});
        ASSERT_EQ(hostTestsPoint(frustum, x, y, z), valueAt(right, x, y, z) > 0.0) << "round " << round;
        inFront += valueAt(right, x, y, z) > 0.0;
        const double radius = -valueAt(right, 1.6 * x, 1.6 * y, 1.6 * z);
        ASSERT_FALSE(hostTestsSphere(frustum, 1.6 * x, 1.6 * y, 1.6 * z, radius)) << "round " << round;
        ASSERT_TRUE(hostTestsSphere(frustum, 1.6 * x, 1.6 * y, 1.6 * z, std::nextafter(radius, 2.0)))
            << "round " << round;
    }
    EXPECT_GT(inFront, 100u) << "rounding must put some points in front of the plane";
    EXPECT_LT(inFront, 900u) << "and some behind";
    EXPECT_TRUE(hostFindsValid(AABoundingBox({kNaN, 0, 0}, {0, 0, 0})));
    EXPECT_FALSE(hostFindsValid(BoundingSphere({0, 0, 0}, std::numeric_limits<float>::quiet_NaN())));
}

TEST(Frustum, CopyHasNoPlanes)
{
    const Frustum cube{ProjMatrix(1.0)};
    Frustum frustum(cube);
    EXPECT_EQ(frustum.boundsType(), 6);
    for (const char* const what : {"copied", "set invalid"})
    {
        EXPECT_FALSE(frustum.isValid()) << what;
        EXPECT_TRUE(frustum.sphereInFrustum(9, 9, 9, 0.1)) << "without planes every sphere of positive radius is in";
        EXPECT_FALSE(frustum.sphereInFrustum(0, 0, 0, 0));
        EXPECT_FALSE(frustum.boxInFrustum(-9, -9, -9, 9, 9, 9)) << "and no box";
        frustum = cube;
        EXPECT_TRUE(frustum.isValid());
        EXPECT_FALSE(frustum.sphereInFrustum(9, 9, 9, 0.1)) << "assignment copies them";
        frustum.setInvalid();
    }
    EXPECT_EQ(Frustum().boundsType(), -1);
}

TEST(Frustum, AnswersIntersectAlone)
{
    const Frustum cube{ProjMatrix(1.0)};
    for (const IBounds::IntersectType type : {IBounds::Outside, IBounds::Inside, IBounds::Intersect})
    {
        EXPECT_EQ(cube.classify(type, AABoundingBox({0.9f, 0.9f, 0}, {5, 5, 1})), type == IBounds::Intersect);
        EXPECT_EQ(cube.classify(type, BoundingSphere({2, 0, 0}, 1.5f)), type == IBounds::Intersect);
        EXPECT_FALSE(cube.classify(type, AABoundingBox({1, 0, 0}, {2, 1, 1}))) << "touching from outside";
        EXPECT_FALSE(cube.classify(type, BoundingSphere({2, 0, 0}, 1))) << "touching from outside";
    }
}
