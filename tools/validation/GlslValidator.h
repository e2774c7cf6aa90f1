#pragma once
#include <validation/PairFindings.h>

namespace krTools
{

/// Compiles and links the two GLSL 1.20 programs of a material with glslang. A program without a "#version" line is read
/// behind the preamble of the target "glsl".
[[nodiscard]] PairFindings validateGlsl(const Source& vertex, const Source& fragment);

} // namespace krTools
