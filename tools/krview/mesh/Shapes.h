#pragma once
#include "Mesh.h"

#include <krview/scene/Scene.h>

#include <memory>

/// Makes a shape other than particles.
/// @param isSmooth  whether the library's own shapes get smooth normals instead of those of their facets
/// @param fineness  pieces around krview's own round shapes
[[nodiscard]] std::unique_ptr<Mesh> newShape(Shape shape, bool isSmooth, unsigned fineness);
