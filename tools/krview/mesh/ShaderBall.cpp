#include "ShaderBall.h"

#include "Profile.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{

constexpr float kDegree = std::numbers::pi_v<float> / 180;

constexpr float kBallRadius = 0.8f;
constexpr float kBallHeight = 1 - kBallRadius; // of its centre
constexpr float kBallBegin = -60;              // latitudes in degrees
constexpr float kGrooveBegin = 14;
constexpr float kGrooveEnd = 24;
constexpr float kGrooveDepth = 0.04f;

/// The point of the ball at a latitude. In the groove the radius sinks by a cosine wave, which begins and ends smoothly.
Profile::Point ballPoint(float latitude)
{
    float radius = kBallRadius;
    float slope = 0; // of the radius, by the angle in radians
    if (latitude > kGrooveBegin && latitude < kGrooveEnd)
    {
        const float waves = 360 / (kGrooveEnd - kGrooveBegin);
        const float phase = (latitude - kGrooveBegin) * waves * kDegree;
        radius -= kGrooveDepth * 0.5f * (1 - std::cos(phase));
        slope = -kGrooveDepth * 0.5f * std::sin(phase) * waves;
    }
    const float c = std::cos(latitude * kDegree);
    const float s = std::sin(latitude * kDegree);
    const float length = std::hypot(radius, slope);
    return {radius * c, kBallHeight + radius * s, (radius * c + slope * s) / length, (radius * s - slope * c) / length,
            latitude / 180 + 0.5f};
}

} // namespace

std::vector<PartArrays> shaderBallParts(unsigned fineness)
{
    const auto piecesOf = [fineness](float degrees)
    { return std::max(2U, static_cast<unsigned>(std::lround(static_cast<float>(fineness) * degrees / 360))); };

    constexpr float kAround = 2 * std::numbers::pi_v<float>;
    Profile ball(kAround);
    const auto addBall = [&ball](float from, float to, unsigned pieces)
    { ball.addCurve([from, to](float share) { return ballPoint(from + share * (to - from)); }, pieces); };
    addBall(kBallBegin, kGrooveBegin, piecesOf(kGrooveBegin - kBallBegin));
    addBall(kGrooveBegin, kGrooveEnd, piecesOf(8 * (kGrooveEnd - kGrooveBegin)));
    addBall(kGrooveEnd, 90, piecesOf(90 - kGrooveEnd));

    Profile ring(kAround);
    ring.addArc(0.42f, -0.56f, 0.09f, -120, 120, piecesOf(360));

    Profile base(kAround);
    base.addLine(0, -1, 0.68f, -1, 1);
    base.addArc(0.68f, -0.95f, 0.05f, -90, 90, piecesOf(180));
    base.addLine(0.68f, -0.9f, 0.6f, -0.9f, 1);
    base.addArc(0.6f, -0.68f, 0.22f, 270, 180, piecesOf(180));
    base.addLine(0.38f, -0.68f, 0.38f, -0.56f, 1);

    std::vector<PartArrays> parts(3);
    parts[0].name = "ball";
    parts[1].name = "ring";
    parts[2].name = "base";
    ball.revolve(parts[0], fineness);
    ring.revolve(parts[1], fineness);
    base.revolve(parts[2], fineness);
    return parts;
}
