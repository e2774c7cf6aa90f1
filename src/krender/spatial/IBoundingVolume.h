#pragma once
#include <krender/platform/Linear.h>
#include <krender/spatial/IBounds.h>

#include <vector>

/// A volume that surrounds geometry and grows with it.
class KRENDER_EXPORT IBoundingVolume : public IBounds
{
public:
    /// Maps the volume; the result surrounds the mapped volume and may be larger.
    virtual void transform(krLinear::AffineMatrix& matrix) = 0;
    /// Grows to take in a point.
    virtual void addPoint(const krLinear::PointFlt& point) = 0;
    /// Grows to take in each point in order; an empty list changes nothing.
    virtual void addPoints(const std::vector<krLinear::PointFlt>& points) = 0;
    [[nodiscard]] virtual krLinear::PointFlt center() const = 0;
    /// The radius of a sphere around center() that holds the volume.
    [[nodiscard]] virtual float radius() const = 0;
    /// The corner of least coordinates.
    [[nodiscard]] virtual krLinear::PointFlt min() const = 0;
    /// The corner of greatest coordinates.
    [[nodiscard]] virtual krLinear::PointFlt max() const = 0;

protected:
    using IBounds::IBounds;
};
