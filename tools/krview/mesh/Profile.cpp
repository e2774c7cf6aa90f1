#include "Profile.h"

#include "SurfaceGrid.h"
#include "Vector3.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace
{

constexpr float kTurn = 2 * std::numbers::pi_v<float>;

} // namespace

void Profile::addLine(float fromRadius, float fromHeight, float toRadius, float toHeight, unsigned pieces)
{
    const float outwards = toRadius - fromRadius;
    const float upwards = toHeight - fromHeight;
    const float length = std::hypot(outwards, upwards);
    addCurve(
        [&](float share)
        {
            return Point{fromRadius + share * outwards, fromHeight + share * upwards, upwards / length,
                         -outwards / length, (fLength + share * length) / fLengthOfV};
        },
        pieces);
    fLength += length;
}

void Profile::addArc(float centreRadius, float centreHeight, float arcRadius, float from, float to, unsigned pieces)
{
    const float facing = to > from ? 1.0f : -1.0f;
    const float length = std::abs(to - from) / 360 * kTurn * arcRadius;
    addCurve(
        [&](float share)
        {
            const float angle = (from + share * (to - from)) / 360 * kTurn;
            return Point{centreRadius + arcRadius * std::cos(angle), centreHeight + arcRadius * std::sin(angle),
                         facing * std::cos(angle), facing * std::sin(angle), (fLength + share * length) / fLengthOfV};
        },
        pieces);
    fLength += length;
}

void Profile::addCurve(const std::function<Point(float)>& pointAt, unsigned pieces)
{
    fCurves.emplace_back();
    for (unsigned i = 0; i <= pieces; ++i)
        fCurves.back().push_back(pointAt(static_cast<float>(i) / static_cast<float>(pieces)));
}

void Profile::revolve(PartArrays& part, unsigned pieces) const
{
    // As on the library's sphere, the first column stands a tenth of a turn from +x, and u grows towards -z.
    constexpr float kBegin = kTurn / 10;
    constexpr float kPole = 1e-6f; // a radius that is 0 but for rounding
    for (const std::vector<Point>& curve : fCurves)
        appendGrid(part, pieces, static_cast<unsigned>(curve.size() - 1),
                   [&](unsigned column, unsigned row)
                   {
                       const Point& point = curve[row];
                       const bool isPole = point.radius < kPole;
                       // A pole belongs to the middle of its column. The last column lies exactly on the first.
                       const float shift = isPole ? 0.5f : 0.0f;
                       const auto shareAt = [&](unsigned of)
                       { return (static_cast<float>(of) + shift) / static_cast<float>(pieces); };
                       const float angle = kBegin + kTurn * shareAt(column % pieces);
                       const Vector3 outwards{std::cos(angle), 0, -std::sin(angle)};
                       return SurfacePoint{
                           .position = outwards * (isPole ? 0 : point.radius) + Vector3{0, point.height, 0},
                           .normal = outwards * point.radiusOfNormal + Vector3{0, point.heightOfNormal, 0},
                           .u = shareAt(column),
                           .v = point.v,
                           .tangent = {-std::sin(angle), 0, -std::cos(angle)}};
                   });
}
