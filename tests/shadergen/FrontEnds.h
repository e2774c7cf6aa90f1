#pragma once
#include "Scenes.h"

#include <string>

/// Compilers' front ends for the programs of both targets.
namespace frontends
{

/// What is wrong with a pair of GLSL programs, compiled and linked; empty when nothing is.
[[nodiscard]] std::string glslFaults(const scenes::Programs& programs);

/// What is wrong with a pair of Cg programs; empty when nothing is.
[[nodiscard]] std::string cgFaults(const scenes::Programs& programs);

/// A pair of correct Cg programs as GLSL 1.20, version line included. Per-vertex inputs are called IN_ and their name,
/// and each program's uniforms stand in a struct.
[[nodiscard]] scenes::Programs cgAsGlsl(const scenes::Programs& programs);

} // namespace frontends
