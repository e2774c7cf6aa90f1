#pragma once
#include <krender/Export.h>
#include <krender/platform/Linear.h>
#include <krender/spatial/IBounds.h>

#include <vector>

/// A bounding volume of geometry, in single precision. The classes are values: copied, not shared.
class KRENDER_EXPORT IBoundingVolume : public IBounds
{
public:
    /// Maps the volume to one of its own kind. A box then contains the mapped box; a sphere may miss parts of the mapped
    /// sphere when the matrix shears.
    /// @param matrix  read only
    virtual void transform(krLinear::AffineMatrix& matrix) = 0;
    /// Grows towards a point that lies outside. A valid volume then contains the point.
    virtual void addPoint(const krLinear::PointFlt& point) = 0;
    /// Adds each point in order; an empty list changes nothing.
    virtual void addPoints(const std::vector<krLinear::PointFlt>& points) = 0;
    [[nodiscard]] virtual krLinear::PointFlt center() const = 0;
    /// The radius of a sphere around center() that bounds the volume.
    [[nodiscard]] virtual float radius() const = 0;
    /// The corner with the smallest coordinates.
    [[nodiscard]] virtual krLinear::PointFlt min() const = 0;
    /// The corner with the largest coordinates.
    [[nodiscard]] virtual krLinear::PointFlt max() const = 0;

protected:
    using IBounds::IBounds;
};
