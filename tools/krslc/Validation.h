#pragma once
#include <common/Findings.h>

#include <krender/shadergen/Target.h>
#include <validation/PairFindings.h>

/// Checks the two programs of a material for a target with a compiler front end, in a process of its own.
/// @return  what is wrong with them, as far as the front end can tell
[[nodiscard]] krTools::PairFindings validate(const Target& target, const krTools::Source& vertex,
                                             const krTools::Source& fragment);
