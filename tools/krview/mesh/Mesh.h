#pragma once
#include <krender/geometry/Geometry.h>
#include <krender/spatial/AABoundingBox.h>

#include <string>
#include <vector>

/// A surface of a mesh that has one material.
struct MeshPart
{
    std::string name;           ///< unique in its mesh; also of its group
    bool isTransparent = false; ///< whether the file says that it is to be blended
};

/// What is drawn as one object: a group of the geometry for each part, in order. A group has streams of the kinds that
/// kStreamKinds lists, at least positions, normals and tangents; one list of triangles over them, which carries its
/// bounding box, and one of lines, which are the edges of its faces.
struct Mesh
{
    Geometry geometry;
    std::vector<MeshPart> parts;
    AABoundingBox bounds; ///< of all parts
};
