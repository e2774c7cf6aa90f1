#pragma once
#include <krender/geometry/Geometry.h>

#include <krender/platform/Linear.h>

#include <initializer_list>
#include <vector>

/// What the sources of the built-in shapes share.
namespace krShapes
{

/// Round shapes have as many corners to a turn.
inline constexpr unsigned kSides = 10;

/// The point on a circle of the XZ plane, shifted along Y. A growing angle goes from +X towards -Z.
/// @param degrees  any angle
[[nodiscard]] krLinear::Point onCircle(double radius, double y, double degrees) noexcept;

/// Floats in the making of a stream.
class Values
{
public:
    void add(double x, double y) { append({x, y}); }
    void add(double x, double y, double z) { append({x, y, z}); }
    void add(double x, double y, double z, double w) { append({x, y, z, w}); }
    void add(const krLinear::Point& p) { append({p.x, p.y, p.z}); }

    /// A stream of floats that owns a copy of the values; its creator's reference goes to the caller.
    [[nodiscard]] const GeometryData* stream(const char* name, GeometryData::DataType type, unsigned components,
                                             int setIndex = 0) const;

private:
    void append(std::initializer_list<double> components);

    std::vector<float> fValues;
};

/// An index list that owns a copy of the indices; its creator's reference goes to the caller.
[[nodiscard]] const GeometryDataIndex* indexList(GeometryDataIndex::DrawPrimitiveType type,
                                                 const std::vector<const GeometryData*>& streams,
                                                 const std::vector<unsigned>& indices);

/// Appends indices to a list.
inline void addFace(std::vector<unsigned>& indices, std::initializer_list<unsigned> face)
{
    indices.insert(indices.end(), face);
}

/// Positions, normals and texture coordinates that do not share indices.
struct Surface
{
    std::vector<unsigned> positions;
    std::vector<unsigned> normals;
    std::vector<unsigned> textureCoords;
};

/// Appends two groups over the same three streams: one of quads, one of triangles, each with a list of its own for every
/// stream. The streams' references are adopted.
/// @param streams  positions, normals, texture coordinates
void appendSurfaces(Geometry& geometry, const std::vector<const GeometryData*>& streams, const char* quadsName,
                    const Surface& quads, const char* trianglesName, const Surface& triangles);

} // namespace krShapes
