#include <krender/platform/Linear.h>
#include <krender/window/TumbleWindowsHandler.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

using krLinear::Point;

TEST(TumbleWindowsHandler, ResizeKeepsSidesOfAtLeastEightAndAsksForARefresh)
{
    TumbleWindowsHandler handler;
    EXPECT_TRUE(handler.needsRefresh()) << "nothing has been drawn yet";
    handler.markDrawn();
    EXPECT_FALSE(handler.needsRefresh());
    for (const auto& [given, stored] : {std::pair(std::pair(3, 100), std::pair(8, 100)), {{9, 7}, {9, 8}}})
    {
        handler.resize(given.first, given.second);
        EXPECT_EQ(std::pair(handler.width(), handler.height()), stored);
    }
    EXPECT_TRUE(handler.needsRefresh() && handler.isResized());
    handler.markDrawn();
    handler.windowMoved();
    EXPECT_TRUE(handler.needsRefresh() && !handler.isResized());
}

TEST(TumbleWindowsHandler, TurnsAboutZThenXThenYByDegreesOver57Point29)
{
    struct Case
    {
        Point from;
        float x, y, z;
        Point to;
    };
    // Quarter turns, worked out by hand: in any other order one of them ends elsewhere.
    const Case cases[] = {
        {{0, 1, 0}, 90, 90, 0, {1, 0, 0}}, {{1, 0, 0}, 90, 0, 90, {0, 0, 1}}, {{1, 0, 0}, 0, 90, 90, {0, 1, 0}}};
    TumbleWindowsHandler handler;
    handler.setDistance(0);
    for (const Case& c : cases)
    {
        handler.setAngles(c.x, c.y, c.z);
        const Point seen = handler.viewMatrix().preMult(c.from);
        EXPECT_LT(krLinear::Vector(seen.x - c.to.x, seen.y - c.to.y, seen.z - c.to.z).length(), 1e-3);
    }
    // A quarter turn overshoots: the nearest float to 90 / 57.29f is 1.57095479965..., and pi / 2 is 1.57079632679...
    handler.setAngles(90, 0, 0);
    EXPECT_NEAR(handler.viewMatrix()(1, 1), -1.58472857e-4, 1e-12);
}

TEST(TumbleWindowsHandler, EveryChangeReachesTheMatrixThatWasAskedForBefore)
{
    TumbleWindowsHandler handler;
    EXPECT_EQ(handler.viewMatrix().preMult(Point(1, 0, 0)), Point(1, 0, -10));
    handler.setDistance(2);
    EXPECT_EQ(handler.viewMatrix().preMult(Point(1, 0, 0)), Point(1, 0, -2));
    handler.setTranslation({0, 5, 0});
    EXPECT_EQ(handler.viewMatrix().preMult(Point(1, 0, 0)), Point(1, 5, -2));
    handler.setAngles(30, -70, 200);
    EXPECT_NEAR(handler.viewMatrix().preMult(Point(0, -5, 0)).z, -2, 1e-12) << "straight away from the eye";
    krLinear::AffineMatrix base;
    base.translate({0, 0, 7});
    handler.setBaseMatrix(base);
    EXPECT_NEAR(handler.viewMatrix().preMult(Point(0, -5, 0)).z, 5, 1e-12);
}
