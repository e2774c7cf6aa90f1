#pragma once
#include <krender/geometry/Geometry.h>

/// Rewrites shapes for a graphics card, which knows one index list for all streams of a vertex.
///
/// The shape becomes one group with two lists over one set of streams: its triangles first, and the edges of its faces.
/// Corners that agree in everything share a vertex. Tangents are derived from positions and texture coordinates where
/// the shape has none, and on request normals that make facets look like the smooth surface that they stand for, along
/// with tangents for them. The triangles carry their bounding box.
///
/// The built-in shapes come in two kinds. Where one list serves all streams, its entries are corners. Where each stream
/// has a list of its own, the n-th entries of the lists belong to the n-th face alike, but the positions go around their
/// faces the other way than normals and texture coordinates, beginning with the same corner: taken entry by entry, a
/// texture would be mirrored across each face's diagonal. The normals tell which way around is the front, so a face
/// whose positions go around against its normals has its positions read backwards from the first.
/// @param shape   borrowed; of quads and triangles
/// @param smooth  whether to derive normals
/// @param joined  gets the group
void joinShape(const Geometry& shape, bool smooth, Geometry& joined);
