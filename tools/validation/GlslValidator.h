#pragma once
#include <validation/PairFindings.h>

#include <krender/shadergen/Target.h>

namespace krTools
{

/// Whether glslang reads the programs of a target.
[[nodiscard]] bool canValidateGlsl(const Target& target) noexcept;

/// Compiles and links the two programs of a material with glslang. A program without a "#version" line is read behind
/// the target's preamble.
/// @param target  one that glslang reads
[[nodiscard]] PairFindings validateGlsl(const Target& target, const Source& vertex, const Source& fragment);

} // namespace krTools
