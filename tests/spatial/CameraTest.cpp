#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/Frustum.h>
#include <krender/spatial/IHWCamera.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <string>

using krLinear::AffineMatrix;
using krLinear::ProjMatrix;

namespace
{

using Window = std::array<double, 6>;

Window windowOf(const IHWCamera& camera)
{
    Window w{};
    camera.getFrustum(w[0], w[1], w[2], w[3], w[4], w[5]);
    return w;
}

/// Whether a small sphere is seen at 0, 10 and 20 on the x axis.
std::array<bool, 3> seen(const IHWCamera& camera)
{
    const auto at = [&camera](int x) { return camera.intersects(BoundingSphere({x, 0, 0}, 0.5f)); };
    return {at(0), at(10), at(20)};
}

struct PlacedCamera : IHWCamera
{
    PlacedCamera() { invertViewMatrix = true; }
};

} // namespace

TEST(Camera, ProjectionsOfALopsidedWindow)
{
    IHWCamera camera;
    EXPECT_FALSE(camera.frustum().isValid());
    camera.setOrtho(-1, 3, -2, 6, 2, 10);
    EXPECT_EQ(camera.projectionKind(), 1);
    EXPECT_EQ(windowOf(camera), (Window{-1, 3, -2, 6, 2, 10}));
    EXPECT_EQ(camera.projMatrix(), ProjMatrix({0.5, 0, 0, 0, 0, 0.25, 0, 0, 0, 0, -0.25, 0, -0.5, -0.5, -1.5, 1}));
    camera.setFrustum(-3, 1, -2, 6, 2, 10);
    EXPECT_EQ(camera.projectionKind(), 0);
    EXPECT_EQ(windowOf(camera), (Window{-3, 1, -2, 6, 2, 10}));
    EXPECT_EQ(camera.projMatrix(), ProjMatrix({1, 0, 0, 0, 0, 0.5, 0, 0, -0.5, 0.5, -1.5, -1, 0, 0, -5, 0}));
}

TEST(Camera, PlanesOfALopsidedWindowHaveUnitNormals)
{
    IHWCamera camera;
    camera.setFrustum(-9, 5, -35, 16, 12, 24); // window and near plane are the legs of right triangles of whole numbers
    const double expected[6][4] = {{-12. / 13, 0, -5. / 13, 0},
                                   {12. / 15, 0, -9. / 15, 0},
                                   {0, 12. / 37, -35. / 37, 0},
                                   {0, -12. / 20, -16. / 20, 0},
                                   {0, 0, 1, 24},
                                   {0, 0, -1, -12}};
    for (unsigned i = 0; i < 6; ++i)
    {
        const auto [a, b, c, d] = camera.frustum().planes()[i];
        for (unsigned k = 0; k < 4; ++k)
            EXPECT_NEAR((std::array{a, b, c, d}[k]), expected[i][k], 1e-13) << "plane " << i << ", coefficient " << k;
    }
}

TEST(Camera, SymmetricForms)
{
    IHWCamera camera;
    camera.setPerspective(90, 2, 1, 100);
    for (const unsigned i : {0U, 1U, 2U, 3U}) // the aspect widens, it does not flatten
        EXPECT_NEAR(windowOf(camera)[i], (std::array{-2, 2, -1, 1}[i]), 1e-12);
    camera.setOrthographic(4, 0.5, 1, 10);
    EXPECT_EQ(windowOf(camera), (Window{-2, 2, -1, 1, 1, 10}));
}

TEST(Camera, FrustumFollowsBothMatrices)
{
    IHWCamera camera;
    camera.setProjMatrix(ProjMatrix(1.0));
    EXPECT_EQ(seen(camera), (std::array{true, false, false}));
    AffineMatrix view;
    view.translate({-10, 0, 0});
    camera.setViewMatrix(view);
    EXPECT_EQ(seen(camera), (std::array{false, true, false}));
    EXPECT_TRUE(camera.intersects(AABoundingBox({9, 0, 0}, {10, 1, 1})));
    camera.setOrtho(9, 11, -1, 1, -1, 1);
    EXPECT_EQ(seen(camera), (std::array{false, false, true})) << "the view is applied before the projection";
}

TEST(Camera, CopiesSeeWhatTheirSourceSees)
{
    PlacedCamera camera;
    AffineMatrix placement;
    placement.translate({10, 0, 0});
    placement.rotate(std::numbers::pi / 2, {0, 1, 0}); // looks along -x
    camera.setViewMatrix(placement);
    camera.setOrtho(-1, 2, -3, 4, 5, 15);
    IHWCamera assigned;
    assigned = camera;
    for (IHWCamera same : {IHWCamera(camera), assigned})
    {
        EXPECT_TRUE(same.frustum().isValid());
        EXPECT_EQ(seen(same), (std::array{true, false, false}));
        EXPECT_EQ(windowOf(same), (Window{-1, 2, -3, 4, 5, 15}));
        EXPECT_EQ(same.projectionKind(), IHWCamera::kOrthographic);
        EXPECT_EQ(same.viewMatrix(), placement);
        same.setPerspective(60, 1, 1, 50);
        EXPECT_EQ(seen(same), (std::array{true, false, false})) << "the view matrix is inverted before use";
    }
}

TEST(Camera, FlatWindowGivesPlanesThatAreNotFinite)
{
    IHWCamera camera;
    camera.setFrustum(1, 1, -1, 1, 1, 10);
    EXPECT_FALSE(std::isfinite(camera.frustum().planes()[0].a));
    camera.setOrtho(-1, 1, -1, 1, 5, 5);
    EXPECT_FALSE(std::isfinite(camera.frustum().planes()[4].c));
    EXPECT_TRUE(camera.frustum().isValid());
}
