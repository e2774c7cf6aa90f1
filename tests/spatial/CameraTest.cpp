#include <krender/spatial/IHWCamera.h>

#include <gtest/gtest.h>

#include <numbers>

using krLinear::HPoint;
using krLinear::Point;
using krLinear::ProjMatrix;

namespace
{

std::array<double, 6> frustumOf(const IHWCamera& camera)
{
    std::array<double, 6> f{};
    camera.getFrustum(f[0], f[1], f[2], f[3], f[4], f[5]);
    return f;
}

/// Where the camera's matrices put a point of the world, after the division by w.
Point projected(const ProjMatrix& matrix, const Point& p)
{
    HPoint h;
    matrix.preMult(h, HPoint(p.x, p.y, p.z, 1));
    return {h.x / h.w, h.y / h.w, h.z / h.w};
}

void expectNear(const Point& a, const Point& b)
{
    EXPECT_NEAR(a.x, b.x, 1e-12);
    EXPECT_NEAR(a.y, b.y, 1e-12);
    EXPECT_NEAR(a.z, b.z, 1e-12);
}

class PlacedCamera : public IHWCamera
{
public:
    PlacedCamera() { invertViewMatrix = true; }
};

} // namespace

TEST(Camera, ProjectionsTakeTheirVolumeToTheCube)
{
    IHWCamera camera;
    camera.setFrustum(-1, 3, -2, 4, 2, 10);
    EXPECT_EQ(camera.projectionKind(), IHWCamera::kPerspective);
    expectNear(projected(camera.projMatrix(), {-1, -2, -2}), {-1, -1, -1});
    expectNear(projected(camera.projMatrix(), {15, -10, -10}), {1, -1, 1});
    camera.setOrtho(-1, 3, -2, 4, 2, 10);
    EXPECT_EQ(camera.projectionKind(), IHWCamera::kOrthographic);
    expectNear(projected(camera.projMatrix(), {-1, -2, -2}), {-1, -1, -1});
    expectNear(projected(camera.projMatrix(), {3, 4, -10}), {1, 1, 1});
}

TEST(Camera, SymmetricForms)
{
    IHWCamera camera;
    camera.setPerspective(90, 1, 1, 100);
    const std::array<double, 6> expected{-1, 1, -1, 1, 1, 100};
    for (unsigned i = 0; i < 6; ++i)
        EXPECT_NEAR(frustumOf(camera)[i], expected[i], 1e-12);
    camera.setPerspective(90, 2, 1, 100);
    EXPECT_NEAR(frustumOf(camera)[1], 2, 1e-12) << "the aspect widens, it does not flatten";
    camera.setOrthographic(4, 0.5, 1, 10);
    EXPECT_EQ(frustumOf(camera), (std::array<double, 6>{-2, 2, -1, 1, 1, 10}));
}

TEST(Camera, FrustumFollowsBothMatrices)
{
    IHWCamera camera;
    camera.setProjMatrix(ProjMatrix(1.0));
    const BoundingSphere straddling({1.5f, 0, 0}, 1);
    const BoundingSphere away({11, 0, 0}, 1);
    EXPECT_TRUE(camera.intersects(straddling));
    EXPECT_FALSE(camera.intersects(away));

    krLinear::AffineMatrix view;
    view.translate({-10, 0, 0});
    camera.setViewMatrix(view);
    EXPECT_FALSE(camera.intersects(straddling));
    EXPECT_TRUE(camera.intersects(away));
    EXPECT_TRUE(camera.intersects(AABoundingBox({9, 0, 0}, {10, 1, 1})));

    camera.setOrtho(9, 11, -1, 1, -1, 1);
    EXPECT_FALSE(camera.intersects(away)) << "the world goes through the view before the projection";
    EXPECT_TRUE(camera.intersects(BoundingSphere({20, 0, 0}, 0.5f)));
}

TEST(Camera, PlacementIsInvertedBeforeUse)
{
    krLinear::AffineMatrix placement;
    placement.translate({10, 0, 0});
    placement.rotate(std::numbers::pi / 2, {0, 1, 0}); // looks along -x
    PlacedCamera camera;
    camera.setViewMatrix(placement);
    camera.setPerspective(60, 1, 1, 50);
    EXPECT_TRUE(camera.invertsViewMatrix());
    EXPECT_EQ(camera.viewMatrix(), placement);
    EXPECT_TRUE(camera.intersects(BoundingSphere({0, 0, 0}, 1)));
    EXPECT_FALSE(camera.intersects(BoundingSphere({20, 0, 0}, 1)));
}

TEST(Camera, FlatFrustumGivesPlanesThatAreNotFinite)
{
    IHWCamera camera;
    camera.setFrustum(1, 1, -1, 1, 1, 10);
    EXPECT_FALSE(std::isfinite(camera.projMatrix()(0, 0)));
    EXPECT_FALSE(std::isfinite(camera.frustum().planes()[0].a));
    camera.setOrtho(-1, 1, -1, 1, 5, 5);
    EXPECT_FALSE(std::isfinite(camera.frustum().planes()[4].c));
    EXPECT_TRUE(camera.frustum().isValid());
}
