#include "Placements.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace
{

/// From the object's own space to the scene.
krLinear::AffineMatrix placementOf(const SceneObject& object, const AABoundingBox& bounds)
{
    krLinear::AffineMatrix fit;
    if (object.isFitted)
    {
        const krLinear::PointFlt low = bounds.min();
        const krLinear::PointFlt high = bounds.max();
        const krLinear::PointFlt middle = bounds.center();
        const float size = std::max({high.x - low.x, high.y - low.y, high.z - low.z});
        fit = krLinear::AffineMatrix(2.0 / static_cast<double>(size));
        fit.translate(krLinear::Vector(-middle.x, -middle.y, -middle.z));
    }
    const auto [x, y, z] = object.scale;
    const krLinear::AffineMatrix scale(std::array<double, 12>{x, 0, 0, 0, y, 0, 0, 0, z, 0, 0, 0});
    krLinear::AffineMatrix turn;
    constexpr double kRadians = std::numbers::pi / 180;
    turn.rotate(object.rotation[2] * kRadians, krLinear::Normal(0, 0, 1));
    turn.rotate(object.rotation[1] * kRadians, krLinear::Normal(0, 1, 0));
    turn.rotate(object.rotation[0] * kRadians, krLinear::Normal(1, 0, 0));
    krLinear::AffineMatrix placement = fit * scale * turn;
    for (unsigned i = 0; i < 3; ++i)
        placement(3, i) += object.position[i];
    return placement;
}

} // namespace

void Placements::add(const SceneObject& object, const AABoundingBox& bounds) { addGrid(object, bounds, 1, 0); }

void Placements::addGrid(const SceneObject& object, const AABoundingBox& bounds, unsigned side, double spacing)
{
    fBegins.push_back(fMatrices.size());
    const krLinear::AffineMatrix middle = placementOf(object, bounds);
    for (unsigned row = 0; row < side; ++row)
        for (unsigned column = 0; column < side; ++column)
        {
            krLinear::AffineMatrix placement = middle;
            placement(3, 0) += (column - 0.5 * (side - 1)) * spacing;
            placement(3, 2) += (row - 0.5 * (side - 1)) * spacing;
            add(placement, bounds, object.castsShadow);
        }
}

void Placements::add(const krLinear::AffineMatrix& matrix, const AABoundingBox& bounds, bool castsShadow)
{
    fMatrices.push_back(matrix);
    fBoxes.push_back(bounds.transformed(matrix));
    fVisible.push_back(1);
    if (castsShadow)
        fCasters += fBoxes.back();
}

void Placements::cull(const Frustum& frustum) { frustum.classifyBoxes(fBoxes, fVisible); }

std::size_t Placements::visibleCount() const noexcept
{
    return static_cast<std::size_t>(std::count(fVisible.begin(), fVisible.end(), 1));
}

AABoundingBox Placements::bounds() const
{
    AABoundingBox all;
    for (const AABoundingBox& box : fBoxes)
        all += box;
    return all;
}

AABoundingBox Placements::castersBounds() const { return fCasters.isValid() ? fCasters : bounds(); }

double Placements::radius() const
{
    const AABoundingBox all = bounds();
    const auto farther = [](float a, float b) { return static_cast<double>(std::max(std::abs(a), std::abs(b))); };
    return std::hypot(farther(all.min().x, all.max().x), farther(all.min().y, all.max().y),
                      farther(all.min().z, all.max().z));
}
