#include <krender/window/TumbleWindowsHandler.h>

#include <gtest/gtest.h>

namespace
{

using krLinear::Point;

/// Looks from the given angles, with the scene's origin at the eye.
Point turned(const Point& p, float x, float y, float z)
{
    TumbleWindowsHandler handler;
    handler.setAngles(x, y, z);
    handler.setDistance(0.0f);
    return handler.viewMatrix().preMult(p);
}

void expectNear(const Point& a, const Point& b, double tolerance)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

} // namespace

TEST(TumbleWindowsHandler, SidesAreAtLeastEight)
{
    struct Case
    {
        int width, height, storedWidth, storedHeight;
    };
    for (const Case& c : {Case{3, 100, 8, 100}, Case{640, -1, 640, 8}, Case{8, 9, 8, 9}})
    {
        TumbleWindowsHandler handler;
        handler.resize(c.width, c.height);
        EXPECT_EQ(handler.width(), c.storedWidth);
        EXPECT_EQ(handler.height(), c.storedHeight);
    }
}

TEST(TumbleWindowsHandler, RefreshIsNeededAfterWhateverChangesThePicture)
{
    TumbleWindowsHandler handler;
    EXPECT_TRUE(handler.needsRefresh()) << "nothing has been drawn yet";
    const auto refreshAfter = [&handler](auto change)
    {
        handler.markDrawn();
        EXPECT_FALSE(handler.needsRefresh());
        EXPECT_FALSE(handler.isResized());
        change();
        return handler.needsRefresh();
    };
    EXPECT_FALSE(refreshAfter([&] { handler.mouseButton(1, 2, 3, 4); }));
    EXPECT_TRUE(refreshAfter([&] { handler.windowMoved(); }));
    EXPECT_FALSE(handler.isResized());
    EXPECT_TRUE(refreshAfter([&] { handler.setDistance(3.0f); }));
    EXPECT_TRUE(refreshAfter([&] { handler.resize(10, 10); }));
    EXPECT_TRUE(handler.isResized());
}

TEST(TumbleWindowsHandler, TurnsAboutZThenXThenY)
{
    struct Case
    {
        Point from;
        float x, y, z;
        Point to;
    };
    // Worked out by hand with quarter turns; each differs in some other order.
    const Case cases[] = {{{0, 1, 0}, 90, 90, 0, {1, 0, 0}},
                          {{1, 0, 0}, 90, 90, 90, {1, 0, 0}},
                          {{1, 0, 0}, 90, 0, 90, {0, 0, 1}},
                          {{1, 0, 0}, 0, 90, 90, {0, 1, 0}}};
    for (const Case& c : cases)
        expectNear(turned(c.from, c.x, c.y, c.z), c.to, 1e-3);
}

TEST(TumbleWindowsHandler, DegreesAreDividedBy57Point29InFloat)
{
    // A quarter turn overshoots: the nearest float to 90 / 57.29f is 1.57095479965..., and pi / 2 is 1.57079632679...
    EXPECT_NEAR(turned({0, 1, 0}, 90, 0, 0).y, -1.58472857e-4, 1e-12);
}

TEST(TumbleWindowsHandler, PushesTheTranslatedSceneBackByTheDistance)
{
    TumbleWindowsHandler handler;
    expectNear(handler.viewMatrix().preMult(Point()), Point(0, 0, -10), 0.0);
    for (const float angle : {0.0f, 30.0f, 200.0f})
    {
        handler.setAngles(angle, -2 * angle, angle / 3);
        handler.setDistance(4.0f);
        handler.setTranslation({1, 2, 3});
        expectNear(handler.viewMatrix().preMult(Point(-1, -2, -3)), Point(0, 0, -4), 1e-12);
    }
}

TEST(TumbleWindowsHandler, EveryChangeReachesTheMatrixThatWasAskedForBefore)
{
    TumbleWindowsHandler handler;
    const auto seen = [&handler] { return handler.viewMatrix().preMult(Point(1, 0, 0)); };
    expectNear(seen(), Point(1, 0, -10), 0.0);
    handler.setDistance(2.0f);
    expectNear(seen(), Point(1, 0, -2), 0.0);
    handler.setTranslation({0, 5, 0});
    expectNear(seen(), Point(1, 5, -2), 0.0);
    krLinear::AffineMatrix base;
    base.translate({0, 0, 7});
    handler.setBaseMatrix(base);
    expectNear(seen(), Point(1, 5, 5), 0.0);
    handler.setAngles(0, 0, 180);
    expectNear(seen(), Point(-1, -5, 5), 2e-3);
}
