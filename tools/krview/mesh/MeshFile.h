#pragma once
#include "Mesh.h"

#include <krview/Progress.h>

#include <memory>
#include <string>
#include <vector>

/// Reads a mesh file of any format that Assimp reads, told by its extension: OBJ, PLY, glTF 2, STL and others. A part is
/// what has one material in the file; what has none makes a part for each name of a mesh. The reading itself happens in
/// a process of its own with bounded time and memory, as such files take its code down; only files below the folder of
/// the mesh are read. Throws a krTools::FileError, and what the progress throws.
/// @param files  the other files that it names are appended, whether they are there or not, also on failure
[[nodiscard]] std::unique_ptr<Mesh> readMesh(const std::string& path, Progress& progress,
                                             std::vector<std::string>& files);
