#pragma once
#include <krender/geometry/Geometry.h>

/// Rewrites a shape for OpenGL, which has one index list for all streams of a vertex.
///
/// The shape becomes one group with two lists over one set of streams: its triangles first, and the edges of its faces.
/// Equal corners share a vertex. Tangents are derived from positions and texture coordinates if the shape has none; for
/// a smooth surface normals and tangents are derived anew. The triangles carry their bounding box.
///
/// The built-in shapes come in two kinds. Where one list serves all streams, its entries are corners. Where each stream
/// has a list of its own, the lists have the same faces in the same order, but positions run around a face in the
/// opposite direction from normals and texture coordinates, from the same first corner: taken entry by entry, a texture
/// would be mirrored across the diagonal of each face. So where the order of the positions contradicts the normals, the
/// positions are read backwards from the first.
/// @param shape   made of quads and triangles; borrowed
/// @param smooth  whether to derive smooth normals
/// @param joined  gets the group
void joinShape(const Geometry& shape, bool smooth, Geometry& joined);
