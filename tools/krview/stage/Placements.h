#pragma once
#include <krview/scene/Scene.h>

#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/Frustum.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// Where the objects of a scene stand, and which of them are in view.
class Placements
{
public:
    /// Stands an object, whose number is that of the objects added before, where the scene says.
    /// @param bounds  of the object in its own space
    void add(const SceneObject& object, const AABoundingBox& bounds);
    /// The same with copies of an object in rows and columns around its place.
    /// @param side     objects in a row, and rows
    /// @param spacing  between the centres of two copies
    void addGrid(const SceneObject& object, const AABoundingBox& bounds, unsigned side, double spacing);

    /// Finds out what is in view.
    void cull(const Frustum& frustum);

    [[nodiscard]] std::size_t count() const noexcept { return fMatrices.size(); }
    [[nodiscard]] std::size_t visibleCount() const noexcept;
    /// Of all objects in the scene.
    [[nodiscard]] AABoundingBox bounds() const;
    /// Of those that cast shadows; of all if none does.
    [[nodiscard]] AABoundingBox castersBounds() const;
    /// The radius of a sphere around the origin that holds all objects.
    [[nodiscard]] double radius() const;
    /// The matrix from object to scene space of an object, or of its first copy.
    [[nodiscard]] const krLinear::AffineMatrix& first(std::size_t object) const { return fMatrices[fBegins[object]]; }
    /// Calls the visitor with the matrix from object to scene space of each copy of an object.
    template <class Visitor>
    void forEach(std::size_t object, Visitor visit) const
    {
        for (std::size_t i = fBegins[object]; i < end(object); ++i)
            visit(fMatrices[i]);
    }
    /// The same for those that are in view.
    template <class Visitor>
    void forEachVisible(std::size_t object, Visitor visit) const
    {
        for (std::size_t i = fBegins[object]; i < end(object); ++i)
            if (fVisible[i] != 0)
                visit(fMatrices[i]);
    }

private:
    void add(const krLinear::AffineMatrix& matrix, const AABoundingBox& bounds, bool castsShadow);
    [[nodiscard]] std::size_t end(std::size_t object) const
    {
        return object + 1 < fBegins.size() ? fBegins[object + 1] : fMatrices.size();
    }

    std::vector<std::size_t> fBegins; ///< of each object, the number of its first copy
    AABoundingBox fCasters;
    std::vector<krLinear::AffineMatrix> fMatrices;
    std::vector<AABoundingBox> fBoxes; ///< in the scene
    std::vector<std::uint8_t> fVisible;
};
