#pragma once
#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/Frustum.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// Copies of one object in rows and columns around the origin of the scene, and which of them are in view.
class ObjectGrid
{
public:
    /// @param side     objects in a row, and rows
    /// @param spacing  between the centres of two objects
    /// @param object   the bounds of the object, which is scaled so that its longest side is 2
    ObjectGrid(unsigned side, double spacing, const AABoundingBox& object);

    /// Finds the objects that are in view.
    void cull(const Frustum& frustum);

    [[nodiscard]] std::size_t count() const noexcept { return fPlacements.size(); }
    [[nodiscard]] std::size_t visibleCount() const noexcept;
    /// The radius of a sphere around the origin that holds all objects.
    [[nodiscard]] double radius() const noexcept { return fRadius; }
    /// Calls the visitor with the matrix from object to scene space of each visible object.
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
