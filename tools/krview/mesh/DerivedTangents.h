#pragma once
#include "PartArrays.h"

/// Gives a part tangents, at right angles to its normals and of length 1. Those that it has are only turned so. Else a
/// vertex has the mean of the directions in which the first texture coordinate grows on its triangles, each projected onto
/// the plane of the vertex's normal and weighted by the triangle's angle there (Mikkelsen, "Simulation of wrinkled
/// surfaces revisited"). Vertices where a texture meets its mirror image are split, lest the two sides cancel out. Where
/// there are no texture coordinates, or where they stand still, the tangent is some direction at right angles to the
/// normal.
/// @param part  has normals of length 1
void deriveTangents(PartArrays& part);
