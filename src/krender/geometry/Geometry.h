#pragma once
#include <krender/Export.h>
#include <krender/core/IResource.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalGroup.h>

#include <cstddef>
#include <memory>
#include <vector>

/// One drawable shape: an ordered list of logical groups, which it owns. A slot of the list may be null; every query skips
/// it.
class KRENDER_EXPORT Geometry : public IResource
{
public:
    /// Makes an empty shape.
    Geometry();
    ~Geometry() override;

    [[nodiscard]] const std::vector<std::unique_ptr<GeometryLogicalGroup>>& groups() const noexcept { return fGroups; }
    /// The number of primitives in all index lists, modulo 2^32. Points, lines, triangles and quads are counted, leftover
    /// indices dropped; a loop, strip, fan or polygon counts 1 whatever its length, and a list of an unknown type 0.
    [[nodiscard]] unsigned totalNumberOfPrimitives() const noexcept;
    /// Whether some index list has another primitive type; false without index lists.
    [[nodiscard]] bool indexTypeDiffers(GeometryDataIndex::DrawPrimitiveType type) const noexcept;
    /// Whether a colour set holds transparent colours. The host says so by a user-data stream, not secondary, that is
    /// named "colorSetTransparency_" and the set's number: its first two bytes, a signed 16-bit integer, are above 0.
    /// Deliberate: the last group with such a stream decides. False without any, and for a stream without elements.
    [[nodiscard]] bool colorDataHasTransparency(unsigned colorSet) const;
    /// Whether some group has a colour mask for this set that is not secondary.
    [[nodiscard]] bool hasColorPerVertexMask(unsigned colorSet) const noexcept;
    /// Whether some group has a tangent-space correction for this set that is not secondary.
    [[nodiscard]] bool hasTangentSpaceCorrection(unsigned set) const noexcept;

    /// The first group of this name, or a new one at the end. Borrowed.
    /// @param name  borrowed: the text outlives a new group; null for the first unnamed group
    GeometryLogicalGroup* createOrReuseLogicalGroup(const char* name);
    /// Makes a new group at the end, also when there is one of this name.
    /// @param name     borrowed: the text outlives the group; null for an unnamed group
    /// @param data     copied; a reference on each stream is adopted
    /// @param indices  copied; a reference on each list is adopted
    void append(const char* name, const std::vector<const GeometryData*>& data,
                const std::vector<const GeometryDataIndex*>& indices);
    /// Hands a group over to the caller. Its slot stays, as null, so the other groups keep their places.
    /// @return  null when the slot is null or past the end
    [[nodiscard]] std::unique_ptr<GeometryLogicalGroup> takeGroup(std::size_t slot) noexcept;
    /// Deletes all groups.
    void reset();
    /// Drops the device copies of all streams, of all index lists, or of both.
    void deleteGeometryCache(bool dataHangers, bool indexHangers) const;

    // The built-in shapes are appended as new groups with new streams. Deliberate: the arguments are ignored, so every
    // call makes the same shape.

    /// The cube from (0, 0, 0) to (1, 1, 1): one list of quads over eight shared corners.
    void createCube(float, float, float, float);
    /// The cylinder of radius 1 around Y, from y = -1 to 1: ten flat sides of quads and two caps of triangles. Positions,
    /// normals and texture coordinates have separate index lists, whose faces start and turn in different ways.
    void createCylinder(float, float, float, float);
    /// The sphere of radius 1 with its poles on Y: flat quads, and triangles at the poles; no corners are shared.
    /// Positions, normals and texture coordinates have separate index lists; those of the positions turn the other way.
    void createSphere(float, float, float, float);

    /// The number of live geometries.
    static int fsNumInstances_Geometry;

private:
    std::vector<std::unique_ptr<GeometryLogicalGroup>> fGroups;
};
