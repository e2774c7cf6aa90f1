#pragma once
#include <krender/core/Ref.h>
#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <initializer_list>
#include <vector>

/// What the sources of the built-in shapes share.
namespace krShapes
{

/// The number of corners around a round shape.
inline constexpr unsigned kSides = 10;

using Streams = std::vector<Ref<const GeometryData>>;
using IndexLists = std::vector<Ref<const GeometryDataIndex>>;

/// The point on a circle around the Y axis, at a height of `y`. A growing angle goes from +X towards -Z.
/// @param degrees  any angle
[[nodiscard]] krLinear::Point onCircle(double radius, double y, double degrees) noexcept;

/// Collects the values of a stream.
class Values
{
public:
    void add(double x, double y) { append({x, y}); }
    void add(double x, double y, double z) { append({x, y, z}); }
    void add(double x, double y, double z, double w) { append({x, y, z, w}); }
    void add(const krLinear::Point& p) { append({p.x, p.y, p.z}); }

    /// A stream of floats that owns a copy of the values.
    [[nodiscard]] Ref<const GeometryData> stream(const char* name, GeometryData::DataType type, unsigned components,
                                                 int setIndex = 0) const;

private:
    void append(std::initializer_list<double> components);

    std::vector<float> fValues;
};

/// An index list that owns a copy of the indices.
[[nodiscard]] Ref<const GeometryDataIndex> indexList(GeometryDataIndex::DrawPrimitiveType type, const Streams& streams,
                                                     const std::vector<unsigned>& indices);

/// Appends a group that holds the streams and the lists.
void appendGroup(Geometry& geometry, const char* name, const Streams& streams, const IndexLists& lists);

/// Appends indices to a list.
inline void addFace(std::vector<unsigned>& indices, std::initializer_list<unsigned> face)
{
    indices.insert(indices.end(), face);
}

/// The indices of faces whose positions, normals and texture coordinates do not share indices.
struct Surface
{
    std::vector<unsigned> positions;
    std::vector<unsigned> normals;
    std::vector<unsigned> textureCoords;
};

/// Appends two groups over the same three streams, one of quads and one of triangles, with a list for each stream.
/// @param streams  positions, normals, texture coordinates
void appendSurfaces(Geometry& geometry, const Streams& streams, const char* quadsName, const Surface& quads,
                    const char* trianglesName, const Surface& triangles);

} // namespace krShapes
