#pragma once
#include <krender/core/IResource.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalGroup.h>

#include <cstddef>
#include <memory>
#include <vector>

/// One drawable shape: an ordered list of logical groups, which it owns. A slot of the list may be empty; every query
/// passes over it.
class KRENDER_EXPORT Geometry : public IResource
{
public:
    /// Makes an empty shape.
    Geometry();
    ~Geometry() override;

    [[nodiscard]] const std::vector<std::unique_ptr<GeometryLogicalGroup>>& groups() const noexcept { return fGroups; }
    /// The number of primitives in all index lists: whole points, lines, triangles and quads, and one a list for all
    /// other types.
    [[nodiscard]] unsigned totalNumberOfPrimitives() const noexcept;
    /// Whether some index list has another primitive type; false without any lists.
    [[nodiscard]] bool indexTypeDiffers(GeometryDataIndex::DrawPrimitiveType type) const noexcept;
    /// Whether a colour set holds transparent colours: the host says so in a user-data stream that is named
    /// "colorSetTransparency_" and the set's number, by a first element above 0, read as a signed 16-bit integer. The last
    /// group with such a stream decides; false without any.
    [[nodiscard]] bool colorDataHasTransparency(unsigned colorSet) const;
    [[nodiscard]] bool hasColorPerVertexMask(unsigned colorSet) const noexcept;
    [[nodiscard]] bool hasTangentSpaceCorrection(unsigned set) const noexcept;

    /// The first group of this name, or a new one at the end. Borrowed.
    /// @param name  null stands for the first unnamed group; the text is borrowed and outlives the group
    GeometryLogicalGroup* createOrReuseLogicalGroup(const char* name);
    /// Makes a new group at the end, whatever the names of the others are.
    /// @param name     borrowed: the text outlives the group; null for an unnamed group
    /// @param data     copied; the references are adopted
    /// @param indices  copied; the references are adopted
    void append(const char* name, const std::vector<const GeometryData*>& data,
                const std::vector<const GeometryDataIndex*>& indices);
    /// Hands a group over to the caller. Its slot stays, empty, so the other groups keep their places.
    [[nodiscard]] std::unique_ptr<GeometryLogicalGroup> takeGroup(std::size_t slot) noexcept;
    /// Deletes the groups.
    void reset();
    /// Drops the device copies of all streams, of all index lists, or of both.
    void deleteGeometryCache(bool dataHangers, bool indexHangers) const;

    // The built-in shapes are appended as new groups with new streams. They have one size and ignore their arguments:
    // hosts scale them by a matrix.

    /// The cube from (0, 0, 0) to (1, 1, 1): quads over eight shared corners.
    void createCube(float, float, float, float);
    /// The cylinder of radius 1 around Y from -1 to 1: ten flat sides of quads and two caps of triangles. Positions,
    /// normals and texture coordinates have index lists of their own.
    void createCylinder(float, float, float, float);
    /// The sphere of radius 1 with its poles on Y: flat quads, and triangles at the poles; no corners are shared.
    /// Positions, normals and texture coordinates have index lists of their own.
    void createSphere(float, float, float, float);

    /// The number of live geometries.
    static int fsNumInstances_Geometry;

private:
    std::vector<std::unique_ptr<GeometryLogicalGroup>> fGroups;
};
