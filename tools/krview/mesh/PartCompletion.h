#pragma once
#include "PartArrays.h"

#include <functional>

/// Makes what a file holds into a part that can be drawn, in time about proportional to its size. Equal vertices become
/// one, and triangles without an area are dropped, of which there may be none left. Missing or unusable normals are derived
/// as deriveNormals does, tangents as deriveTangents does; texture coordinates and colours are left out where the file has
/// none. A file that names no edges gets those of its triangles, each once.
/// @param part    has passed checkPart()
/// @param report  is told now and then which share of this is done; may throw
void completePart(PartArrays& part, const std::function<void(float)>& report);
