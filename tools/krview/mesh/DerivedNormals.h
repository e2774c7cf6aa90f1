#pragma once
#include "PartArrays.h"

#include <vector>

/// Gives a part smooth normals that break at edges where its faces turn by more than 45 degrees; such vertices are split.
/// Around a place, the triangles that hang together by smooth edges share the mean of their normals, each weighted by the
/// triangle's angle there (Thuermer and Wuethrich, "Computing vertex normals from polygonal facets").
/// @param part    has triangles, all of them with an area
/// @param places  of each vertex the first at its place; the ends of the edges are such
void deriveNormals(PartArrays& part, const std::vector<unsigned>& places);
