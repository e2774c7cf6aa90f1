#pragma once
#include "PartArrays.h"

#include <functional>
#include <vector>

/// The curve that a surface of revolution turns about the y axis. It is made of pieces from below to above, as seen from
/// outside; where a piece ends and the next begins in another direction, the surface has a sharp edge.
class Profile
{
public:
    /// A point of the curve.
    struct Point
    {
        float radius = 0;
        float height = 0;
        float radiusOfNormal = 0; ///< with the next, the direction that the surface faces, of length 1
        float heightOfNormal = 0;
        float v = 0; ///< the second texture coordinate
    };

    /// @param length  of lines and arcs, along which v grows by 1
    explicit Profile(float length) noexcept : fLengthOfV(length) {}

    /// Goes on along a straight line.
    void addLine(float fromRadius, float fromHeight, float toRadius, float toHeight, unsigned pieces);
    /// Goes on along an arc about a point; angles in degrees, counter-clockwise from where the radius grows. The surface
    /// faces away from the arc's centre if the angle grows, else towards it.
    void addArc(float centreRadius, float centreHeight, float arcRadius, float from, float to, unsigned pieces);
    /// Goes on along any curve.
    /// @param pointAt  gives the points, from 0 to 1
    void addCurve(const std::function<Point(float)>& pointAt, unsigned pieces);

    /// Appends the surface.
    /// @param pieces  around
    void revolve(PartArrays& part, unsigned pieces) const;

private:
    std::vector<std::vector<Point>> fCurves;
    float fLengthOfV;
    float fLength = 0; ///< of the lines and arcs so far
};
