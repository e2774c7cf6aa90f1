#include <krender/spatial/Frustum.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>

using krLinear::PointFlt;
using krLinear::ProjMatrix;

namespace
{

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The tests as they read: plane after plane, corner after corner.
bool plainSphere(const Frustum& frustum, double x, double y, double z, double radius)
{
    for (const Frustum::Plane& p : frustum.planes())
        if (-radius >= p.a * x + p.b * y + p.c * z + p.d)
            return false;
    return true;
}

bool plainBox(const Frustum& frustum, const std::array<double, 3>& min, const std::array<double, 3>& max)
{
    for (const Frustum::Plane& p : frustum.planes())
    {
        bool passed = false;
        for (unsigned corner = 0; corner < 8; ++corner)
        {
            const double x = (corner & 1 ? max : min)[0];
            const double y = (corner & 2 ? max : min)[1];
            const double z = (corner & 4 ? max : min)[2];
            passed = passed || p.a * x + p.b * y + p.c * z + p.d > 0.0;
        }
        if (!passed)
            return false;
    }
    return true;
}

/// Numbers of every kind, and many that land exactly on planes. Round by round more of them are odd.
class Numbers
{
public:
    explicit Numbers(unsigned oddPercent) : fOddPercent(oddPercent) {}

    double operator()()
    {
        constexpr double kOdd[] = {0.0, -0.0, kInf, -kInf, kNaN, 1e300, -1e300, 3e38, -3e38, 1e-310, 1.0, -1.0};
        if (fRandom() % 100 < fOddPercent)
            return kOdd[fRandom() % std::size(kOdd)];
        if (fRandom() % 4 == 0)
            return static_cast<double>(fRandom() % 9) / 4.0 - 1.0;
        return std::uniform_real_distribution<double>(-3, 3)(fRandom);
    }

    std::array<double, 3> triple() { return {(*this)(), (*this)(), (*this)()}; }

    PointFlt point()
    {
        const auto clamped = [this] { return static_cast<float>(std::clamp((*this)(), -3e38, 3e38)); };
        return {clamped(), clamped(), clamped()};
    }

    /// The unit cube, or a map with elements of every kind.
    Frustum frustum()
    {
        std::array<double, 16> elements{};
        for (double& element : elements)
            element = (*this)();
        return Frustum(fRandom() % 4 == 0 ? ProjMatrix(1.0) : ProjMatrix(elements));
    }

    bool chance(unsigned percent) { return fRandom() % 100 < percent; }

private:
    std::mt19937 fRandom{23};
    unsigned fOddPercent;
};

} // namespace

TEST(Frustum, PlanesOfTheUnitCube)
{
    const std::array<double, 4> expected[] = {{-1, 0, 0, 1}, {1, 0, 0, 1},  {0, 1, 0, 1},
                                              {0, -1, 0, 1}, {0, 0, -1, 1}, {0, 0, 1, 1}};
    const std::array<Frustum::Plane, 6> planes = Frustum(ProjMatrix(1.0)).planes();
    for (unsigned i = 0; i < 6; ++i)
    {
        const auto& [a, b, c, d] = planes[i];
        EXPECT_EQ((std::array{a, b, c, d}), expected[i]) << "plane " << i;
    }
}

TEST(Frustum, EdgesOfTheTests)
{
    const Frustum cube{ProjMatrix(1.0)};
    EXPECT_FALSE(cube.sphereInFrustum(2, 0, 0, 1)) << "touching from outside";
    EXPECT_TRUE(cube.sphereInFrustum(2, 0, 0, 1.5));
    EXPECT_FALSE(cube.boxInFrustum(1, 0, 0, 2, 1, 1)) << "touching from outside";
    EXPECT_FALSE(cube.boxInFrustum(-1, 2, -1, 1, 3, 1)) << "beyond one plane";
    EXPECT_TRUE(cube.boxInFrustum(0.9, 0.9, 0, 5, 5, 0.1));
    // Outside past an edge, but not wholly behind any one plane of a slanted frustum.
    krLinear::AffineMatrix turned;
    turned.rotate(0.785398, {0, 0, 1});
    EXPECT_TRUE(Frustum(ProjMatrix(turned)).boxInFrustum(1.2, -2, 0, 4, 2, 1));
}

TEST(Frustum, SingleTestsAgreeWithPlainOnes)
{
    for (const unsigned oddPercent : {0u, 2u, 20u})
    {
        Numbers number(oddPercent);
        unsigned inside = 0;
        for (int round = 0; round < 60'000; ++round)
        {
            const Frustum frustum = number.frustum();
            const std::array<double, 3> min = number.triple();
            std::array<double, 3> max = number.triple();
            if (number.chance(60)) // in order, as real boxes are
                for (unsigned k = 0; k < 3; ++k)
                    max[k] = std::max(min[k], max[k]);
            const double radius = number();
            const bool sphere = frustum.sphereInFrustum(min[0], min[1], min[2], radius);
            const bool box = frustum.boxInFrustum(min[0], min[1], min[2], max[0], max[1], max[2]);
            ASSERT_EQ(sphere, plainSphere(frustum, min[0], min[1], min[2], radius)) << "round " << round;
            ASSERT_EQ(box, plainBox(frustum, min, max)) << "round " << round;
            inside += sphere + box;
        }
        EXPECT_GT(inside, 1000u) << "the volumes must not all be outside";
    }
}

TEST(Frustum, ArraysAgreeWithPlainTests)
{
    for (const unsigned oddPercent : {0u, 1u, 20u})
    {
        Numbers number(oddPercent);
        for (std::size_t round = 0; round < 4'000; ++round)
        {
            const Frustum frustum = number.frustum();
            std::vector<BoundingSphere> spheres;
            std::vector<AABoundingBox> boxes;
            for (std::size_t i = 0; i < round % 11; ++i)
            {
                const PointFlt corner = number.point();
                const PointFlt other = number.point();
                spheres.emplace_back(corner, other.x);
                boxes.emplace_back(corner, other);
                if (number.chance(60))
                {
                    boxes.back() = AABoundingBox();
                    boxes.back().addPoints({corner, other});
                }
                if (number.chance(oddPercent))
                    boxes.back().setMax({number(), number(), number()}); // infinities and NaN too
            }
            std::vector<std::uint8_t> spheresSeen(spheres.size());
            std::vector<std::uint8_t> boxesSeen(boxes.size());
            frustum.classifySpheres(spheres, spheresSeen);
            frustum.classifyBoxes(boxes, boxesSeen);
            for (std::size_t i = 0; i < spheres.size(); ++i)
            {
                const PointFlt c = spheres[i].center();
                ASSERT_EQ(spheresSeen[i], plainSphere(frustum, c.x, c.y, c.z, spheres[i].radius())) << i;
                const PointFlt min = boxes[i].min();
                const PointFlt max = boxes[i].max();
                ASSERT_EQ(boxesSeen[i], plainBox(frustum, {min.x, min.y, min.z}, {max.x, max.y, max.z})) << i;
            }
        }
    }
}

TEST(Frustum, CopyHasNoPlanes)
{
    const Frustum cube{ProjMatrix(1.0)};
    const Frustum copy(cube); // NOLINT(performance-unnecessary-copy-initialization): the copy is what is tested
    EXPECT_FALSE(copy.isValid());
    EXPECT_TRUE(copy.sphereInFrustum(9, 9, 9, 0.1)) << "without planes every sphere is in";
    EXPECT_FALSE(copy.sphereInFrustum(0, 0, 0, 0));
    EXPECT_FALSE(copy.boxInFrustum(-9, -9, -9, 9, 9, 9)) << "and no box";
    EXPECT_EQ(copy.boundsType(), 6);
    EXPECT_EQ(Frustum().boundsType(), -1);

    Frustum assigned;
    assigned = cube;
    EXPECT_TRUE(assigned.isValid());
    EXPECT_FALSE(assigned.sphereInFrustum(9, 9, 9, 0.1));
    assigned.setInvalid();
    EXPECT_FALSE(assigned.isValid());
    EXPECT_TRUE(assigned.sphereInFrustum(9, 9, 9, 0.1));
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
