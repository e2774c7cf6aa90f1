#pragma once
#include "MeshWire.h"

/// Reads a mesh file with Assimp and sends its triangles, as they stand in its scene, as pieces: one for each place of
/// each mesh, named after its material or, where the file has no materials, after the mesh. Throws what Assimp throws,
/// and a MeshError.
void readWithAssimp(const char* path, const MeshWireOutput& output);

/// What the program does that was started to read a mesh file: reads it, writes all to kMeshReaderOutput and ends.
[[noreturn]] void readMeshHere(const char* path);
