#pragma once
#include "Mesh.h"
#include "PartArrays.h"

#include <memory>
#include <vector>

/// Puts parts into the library's geometry.
/// @param parts  whole: their entries are in range, their positions finite, and their streams, which are at least
///               positions, normals and tangents, are of one length
[[nodiscard]] std::unique_ptr<Mesh> buildMesh(const std::vector<PartArrays>& parts);
