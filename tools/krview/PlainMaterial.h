#pragma once
#include "Material.h"

#include <optional>

/// Reads the sources of a scene with the plain parser, as a host does that uses ShadingParser, and compiles them. Errors
/// are printed. Throws a krTools::FileError.
/// @return  nothing when there are errors
[[nodiscard]] std::optional<Material> compilePlainMaterial(const Scene& scene);
