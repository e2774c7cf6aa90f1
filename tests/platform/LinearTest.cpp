#include <krender/platform/Linear.h>

#include <gtest/gtest.h>

#include <limits>
#include <numbers>
#include <random>

using namespace krLinear;

namespace
{

AffineMatrix randomAffine(std::mt19937& random)
{
    std::uniform_real_distribution<double> element(-2.0, 2.0);
    AffineMatrix m;
    for (unsigned r = 0; r < 4; ++r)
        for (unsigned c = 0; c < 3; ++c)
            m(r, c) = element(random);
    return m;
}

void expectNear(const Point& a, const Point& b, double tolerance = 1e-9)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

} // namespace

TEST(AffineMatrix, InverseUndoesTheMap)
{
    std::mt19937 random(7);
    for (int i = 0; i < 100; ++i)
    {
        const AffineMatrix m = randomAffine(random);
        const Point p(1.5, -2.0, 0.25);
        expectNear(m.inverse().preMult(m.preMult(p)), p, 1e-6);
        EXPECT_TRUE(equivalent(ProjMatrix(m * m.inverse()), ProjMatrix(1.0), 1e-6));
    }
}

TEST(AffineMatrix, InverseOfSingularIsNotFinite) { EXPECT_FALSE(std::isfinite(AffineMatrix(0.0).inverse()(0, 0))); }

TEST(AffineMatrix, RotationIsRightHanded)
{
    const double quarter = std::numbers::pi / 2;
    struct Case
    {
        Normal axis;
        Point from, to;
    };
    const Case cases[] = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                          {{0, 2, 0}, {0, 0, 1}, {1, 0, 0}}, // an axis of any length
                          {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}};
    for (const Case& c : cases)
    {
        AffineMatrix m;
        m.rotate(quarter, c.axis);
        expectNear(m.preMult(c.from), c.to);
    }
}

TEST(AffineMatrix, RotationKeepsLengthAndAxis)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> value(-3.0, 3.0);
    for (int i = 0; i < 100; ++i)
    {
        const Normal axis(value(random), value(random), value(random));
        const Point p(value(random), value(random), value(random));
        AffineMatrix m;
        m.rotate(value(random), axis);
        const Point q = m.preMult(p);
        EXPECT_NEAR(Vector(q.x, q.y, q.z).length(), Vector(p.x, p.y, p.z).length(), 1e-12);
        expectNear(m.preMult(Point(axis.x, axis.y, axis.z)), Point(axis.x, axis.y, axis.z), 1e-12);
    }
}

TEST(AffineMatrix, ZeroAxisRotatesNothing)
{
    AffineMatrix m;
    m.rotate(1.0, Normal(0, 0, 0));
    EXPECT_EQ(m, AffineMatrix(1.0));
}

TEST(AffineMatrix, RotateAndTranslateGoAheadOfTheMap)
{
    std::mt19937 random(13);
    const AffineMatrix m = randomAffine(random);
    const Point p(0.5, 1.0, -1.0);

    AffineMatrix moved = m;
    moved.translate(Vector(1, 2, 3));
    expectNear(moved.preMult(p), m.preMult(Point(1.5, 3.0, 2.0)));

    AffineMatrix turned = m;
    turned.rotate(std::numbers::pi, Normal(0, 0, 1));
    expectNear(turned.preMult(p), m.preMult(Point(-0.5, -1.0, -1.0)));
}

TEST(ProjMatrix, ProductAppliesTheLeftFactorFirst)
{
    std::mt19937 random(17);
    const AffineMatrix a = randomAffine(random);
    const AffineMatrix b = randomAffine(random);
    HPoint h;
    (ProjMatrix(a) * ProjMatrix(b)).preMult(h, HPoint(1, 2, 3, 1));
    expectNear(Point(h.x, h.y, h.z), b.preMult(a.preMult(Point(1, 2, 3))));
    EXPECT_EQ(h.w, 1.0);
    EXPECT_TRUE(equivalent(ProjMatrix(a * b), ProjMatrix(a) * ProjMatrix(b), 1e-12));
}

TEST(ProjMatrix, PreMultMayOverwriteItsArgument)
{
    ProjMatrix swap(0.0);
    swap(0, 1) = swap(1, 0) = swap(2, 3) = swap(3, 2) = 1.0;
    HPoint p(1, 2, 3, 4);
    swap.preMult(p, p);
    EXPECT_EQ(p, HPoint(2, 1, 4, 3));
}

TEST(ProjMatrix, ExactAndTolerantComparisonDiffer)
{
    ProjMatrix nearly(1.0);
    nearly(3, 2) = epsilonTol / 2;
    EXPECT_FALSE(nearly == ProjMatrix(1.0));
    EXPECT_TRUE(equivalent(nearly, ProjMatrix(1.0), epsilonTol));
    nearly(3, 2) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(equivalent(nearly, nearly, epsilonTol));
}
