#include <krender/platform/Linear.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <string>

using namespace krLinear;

namespace
{

constexpr AffineMatrix kFirst({1, 3, -1, 2, 7, 2, -1, 0, 14, 5, -4, 6});
constexpr AffineMatrix kSecond({2, 1, 0, -3, 1, 4, 0, 2, -1, 7, 8, 9});
constexpr AffineMatrix kProduct({-7, 2, 13, -17, 13, 26, -2, 27, -14, 29, 21, -13});

void expectNear(const Point& a, const Point& b)
{
    EXPECT_NEAR(a.x, b.x, 1e-12);
    EXPECT_NEAR(a.y, b.y, 1e-12);
    EXPECT_NEAR(a.z, b.z, 1e-12);
}

} // namespace

TEST(Vector, AddsScalesAndMultiplies)
{
    constexpr Vector kA(1, 2, 3);
    constexpr Vector kB(5, -7, 11);
    EXPECT_EQ(kA + kB, Vector(6, -5, 14));
    EXPECT_EQ(kA - kB, Vector(-4, 9, -8));
    EXPECT_EQ(-kB, Vector(-5, 7, -11));
    EXPECT_EQ(kB * 2, Vector(10, -14, 22));
    EXPECT_EQ(2 * kB, Vector(10, -14, 22));
    EXPECT_EQ(kB / 2, Vector(2.5, -3.5, 5.5));
    EXPECT_EQ(dot(kA, kB), 24);
    EXPECT_EQ(dot(Normal(kA), kB), 24);
    EXPECT_EQ(cross(kA, kB), Vector(43, 4, -17));
    EXPECT_EQ(cross(Normal(1, 0, 0), Normal(0, 1, 0)), Vector(0, 0, 1));
}

TEST(Vector, NormalizesWhateverItsLength)
{
    for (const double scale : {1.0, 1e300, 1e-300, -1.0})
    {
        const Vector unit = (Vector(2, 3, 6) * scale).normalized();
        EXPECT_NEAR(dot(unit, Vector(2, 3, 6)), scale < 0 ? -7 : 7, 1e-14) << scale;
        EXPECT_NEAR(unit.length(), 1, 1e-15) << scale;
    }
    EXPECT_EQ(Vector().normalized(), Vector());
    EXPECT_EQ(Normal(0, -3, 4).normalized(), Normal(0, -0.6, 0.8));
}

TEST(Point, IsMovedByVectorsAndScaledAboutTheOrigin)
{
    constexpr Vector kMove(0.5, -1, 4);
    EXPECT_EQ(Point(1, 2, 3) + kMove, Point(1.5, 1, 7));
    EXPECT_EQ(Point(1, 2, 3) - kMove, Point(0.5, 3, -1));
    EXPECT_EQ(Point(1.5, 1, 7) - Point(1, 2, 3), kMove);
    EXPECT_EQ(Point(1, 2, 3) * 3, Point(3, 6, 9));
    EXPECT_EQ(PointFlt(1, 2, 3) + kMove, PointFlt(1.5, 1, 7));
    EXPECT_EQ(2 * PointFlt(1, 2, 3), PointFlt(2, 4, 6));
    EXPECT_EQ((PointFlt(3e38, 0, 0) - PointFlt(-3e38, 0, 0)).x, 2.0 * 3e38f) << "differences are taken in double";
    EXPECT_EQ(distance(PointFlt(1, 2, 3), PointFlt(3, 5, 9)), 7);
}

TEST(AffineMatrix, AppliesTheLeftFactorFirst)
{
    EXPECT_EQ(kFirst * kSecond, kProduct);
    EXPECT_EQ(Point(2, -3, 1) * kProduct, Point(2, -3, 1) * kFirst * kSecond);
    EXPECT_EQ(Point(2, -3, 1) * kFirst, Point(0, -19, 12));
    EXPECT_EQ(Vector(2, -3, 1) * kFirst, Vector(-5, -15, 6)) << "not translated";
    EXPECT_EQ(kFirst.elements()[11], 6);
}

TEST(AffineMatrix, InverseUndoesTheMap)
{
    EXPECT_EQ(kFirst.inverse(), AffineMatrix({98, -42, 13, -30, 13, -4, 7, -3, 1, -652, 280, -87}));
    EXPECT_EQ(AffineMatrix(4.0).inverse(), AffineMatrix(0.25));
}

TEST(AffineMatrix, InverseOfSingularIsNotFinite) { EXPECT_FALSE(std::isfinite(AffineMatrix(0.0).inverse()(0, 0))); }

TEST(AffineMatrix, RotationIsRightHanded)
{
    struct Case
    {
        Normal axis; // of any length
        double angle;
        Point to; // where (1, 2, 3) goes
    };
    constexpr double kQuarter = std::numbers::pi / 2;
    for (const Case& c : {Case{{1, 0, 0}, kQuarter, {1, -3, 2}},
                          {{0, 2, 0}, kQuarter, {3, 2, -1}},
                          {{0, 0, 0.5}, kQuarter, {-2, 1, 3}},
                          {{1, 1, 1}, std::numbers::pi * 2 / 3, {3, 1, 2}},
                          {{1, 1, 0}, 2 * kQuarter, {2, 1, -3}},
                          {{0, 0, 0}, 1, {1, 2, 3}}})
    {
        AffineMatrix m;
        m.rotate(c.angle, c.axis);
        expectNear(Point(1, 2, 3) * m, c.to);
    }
}

TEST(AffineMatrix, RotateAndTranslateGoAheadOfTheMap)
{
    AffineMatrix moved = kFirst;
    moved.translate(Vector(1, 2, 3));
    EXPECT_EQ(Point(4, 5, 6) * moved, Point(5, 7, 9) * kFirst);

    AffineMatrix turned = kFirst;
    turned.rotate(std::numbers::pi, Normal(0, 0, 1));
    expectNear(Point(4, 5, 6) * turned, Point(-4, -5, 6) * kFirst);
}

TEST(ProjMatrix, AppliesTheLeftFactorFirst)
{
    EXPECT_EQ(ProjMatrix(kFirst) * ProjMatrix(kSecond), ProjMatrix(kProduct));
    constexpr ProjMatrix kM({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    EXPECT_EQ(kM * kM, ProjMatrix({90, 100, 110, 120, 202, 228, 254, 280, 314, 356, 398, 440, 426, 484, 542, 600}));
    HPoint p(1, 2, -3, 4);
    kM.preMult(p, p);
    EXPECT_EQ(p, HPoint(36, 40, 44, 48)) << "also in place";
}

TEST(ProjMatrix, ExactAndTolerantComparisonDiffer)
{
    ProjMatrix nearly(1.0);
    nearly(3, 2) = -epsilonTol / 2;
    EXPECT_FALSE(nearly == ProjMatrix(1.0));
    EXPECT_TRUE(equivalent(nearly, ProjMatrix(1.0), epsilonTol / 2));
    EXPECT_FALSE(equivalent(nearly, ProjMatrix(1.0), epsilonTol / 3));
    nearly(3, 2) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(equivalent(nearly, nearly, epsilonTol));
}
