#pragma once
#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/Frustum.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// Copies of one object in rows and columns around the scene's origin, and which of them are in view.
class ObjectGrid
{
public:
    /// @param side     how many in a row, and how many rows
    /// @param spacing  from one middle to the next
    /// @param object   the bounds of the object, which is brought to a half side of 1
    ObjectGrid(unsigned side, double spacing, const AABoundingBox& object);

    /// Finds the objects that are in view.
    void cull(const Frustum& frustum);

    [[nodiscard]] std::size_t count() const noexcept { return fPlacements.size(); }
    [[nodiscard]] std::size_t visibleCount() const noexcept;
    /// How far from the origin objects reach.
    [[nodiscard]] double radius() const noexcept { return fRadius; }
    /// Calls the visitor with the placement of each visible object, from its own space to the scene.
    template <class Visitor>
    void forEachVisible(Visitor visit) const
    {
        for (std::size_t i = 0; i < fPlacements.size(); ++i)
            if (fVisible[i] != 0)
                visit(fPlacements[i]);
    }

private:
    std::vector<krLinear::AffineMatrix> fPlacements;
    std::vector<AABoundingBox> fBoxes; ///< in the scene
    std::vector<std::uint8_t> fVisible;
    double fRadius;
};
