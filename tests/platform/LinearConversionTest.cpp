#include <krender/platform/Linear.h>
#include <krender/platform/LinearConversion.h>

#include <Eigen/Core>
#include <Imath/ImathMatrix.h>
#include <Imath/ImathVec.h>
#include <glm/glm.hpp>
#include <gtest/gtest.h>

#include <array>
#include <vector>

using namespace krLinear;

namespace
{

// Every element is another number, so that no two can be mixed up.
constexpr AffineMatrix kAffine({1, 2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31});
constexpr ProjMatrix kProjection({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
constexpr Point kPoint(2, -3, 0.5);

/// The smallest class that has coordinates.
struct Plain
{
    float x, y, z;
};

static_assert(convert<Point>(convert<Plain>(kPoint)) == kPoint);
static_assert(convert<Vector>(convert<std::array<float, 3>>(kPoint)) == Vector(2, -3, 0.5));
static_assert(convert<PointFlt>(kPoint) == PointFlt(2, -3, 0.5));
static_assert(convert<AffineMatrix>(ProjMatrix(2.0)) == AffineMatrix(2.0));

template <class From, class To>
concept Converts = requires(const From& from)
{
    convert<To>(from);
};
static_assert(!Converts<glm::vec4, Point> && !Converts<Point, glm::vec4>, "w would be lost");
static_assert(!Converts<Point, std::vector<double>> && !Converts<Point, float*>, "nothing holds the numbers");
static_assert(!Converts<ProjMatrix, Eigen::MatrixXd> && !Converts<ProjMatrix, Eigen::Vector3d>);
static_assert(!Converts<glm::vec3, Imath::V3f>, "neither is of this library");

template <class Triple>
void expectTriple(const Triple& expected)
{
    EXPECT_EQ(convert<Triple>(kPoint), expected);
    EXPECT_EQ(convert<Point>(expected), kPoint);
    EXPECT_EQ(convert<PointFlt>(expected), PointFlt(2, -3, 0.5));
    EXPECT_EQ(convert<Vector>(expected), Vector(2, -3, 0.5));
    EXPECT_EQ(convert<Triple>(Normal(2, -3, 0.5)), expected);
}

template <class Matrix>
void expectMatrix()
{
    EXPECT_EQ(convert<ProjMatrix>(convert<Matrix>(kProjection)), kProjection);
    EXPECT_EQ(convert<ProjMatrix>(convert<Matrix>(kAffine)), ProjMatrix(kAffine));
    EXPECT_EQ(convert<AffineMatrix>(convert<Matrix>(kAffine)), kAffine);
}

} // namespace

TEST(LinearConversion, GivesTheSameNumbersInImath)
{
    expectTriple(Imath::V3f(2, -3, 0.5f));
    expectTriple(Imath::V3d(2, -3, 0.5));
    expectMatrix<Imath::M44f>();
    expectMatrix<Imath::M44d>();
    EXPECT_EQ(convert<Point>(Imath::V3d(2, -3, 0.5) * convert<Imath::M44d>(kAffine)), kPoint * kAffine);
}

TEST(LinearConversion, GivesTheSameNumbersInGlm)
{
    expectTriple(glm::vec3(2, -3, 0.5f));
    expectTriple(glm::dvec3(2, -3, 0.5));
    expectMatrix<glm::mat4>();
    expectMatrix<glm::dmat4>();
    const glm::dvec3 mapped(convert<glm::dmat4>(kAffine) * glm::dvec4(2, -3, 0.5, 1));
    EXPECT_EQ(convert<Point>(mapped), kPoint * kAffine);
}

TEST(LinearConversion, GivesTheSameNumbersInEigen)
{
    expectTriple(Eigen::Vector3f(2, -3, 0.5f));
    expectTriple(Eigen::Vector3d(2, -3, 0.5));
    expectMatrix<Eigen::Matrix4f>();
    expectMatrix<Eigen::Matrix4d>();
    const Eigen::Matrix4d columns = convert<Eigen::Matrix4d>(kAffine).transpose();
    const Eigen::Vector3d mapped = (columns * Eigen::Vector4d(2, -3, 0.5, 1)).head<3>();
    EXPECT_EQ(convert<Point>(mapped), kPoint * kAffine);
    EXPECT_EQ(convert<AffineMatrix>(columns.transpose()), kAffine);
}

TEST(LinearConversion, ReadsArrays)
{
    const float point[] = {2, -3, 0.5f};
    EXPECT_EQ(convert<Point>(point), kPoint);
    const double matrix[4][4] = {{1, 2, 3, 0}, {5, 7, 11, 0}, {13, 17, 19, 0}, {23, 29, 31, 1}};
    EXPECT_EQ(convert<AffineMatrix>(matrix), kAffine);
}
