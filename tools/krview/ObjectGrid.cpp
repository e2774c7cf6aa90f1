#include "ObjectGrid.h"

#include <algorithm>
#include <numbers>

ObjectGrid::ObjectGrid(unsigned side, double spacing, const AABoundingBox& object)
    : fVisible(std::size_t{side} * side),
      fRadius(std::numbers::sqrt2 * 0.5 * (side - 1) * spacing + std::numbers::sqrt3)
{
    const krLinear::PointFlt low = object.min();
    const krLinear::PointFlt high = object.max();
    const krLinear::PointFlt middle = object.center();
    const float size = std::max({high.x - low.x, high.y - low.y, high.z - low.z});
    for (unsigned row = 0; row < side; ++row)
        for (unsigned column = 0; column < side; ++column)
        {
            krLinear::AffineMatrix placement(2.0 / static_cast<double>(size));
            placement.translate(krLinear::Vector(-middle.x, -middle.y, -middle.z));
            placement(3, 0) += (column - 0.5 * (side - 1)) * spacing;
            placement(3, 2) += (row - 0.5 * (side - 1)) * spacing;
            fPlacements.push_back(placement);
            fBoxes.push_back(object);
            fBoxes.back().transform(placement);
        }
}

void ObjectGrid::cull(const Frustum& frustum) { frustum.classifyBoxes(fBoxes, fVisible); }

std::size_t ObjectGrid::visibleCount() const noexcept
{
    return static_cast<std::size_t>(std::count(fVisible.begin(), fVisible.end(), 1));
}
