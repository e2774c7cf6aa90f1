#pragma once
#include <validation/PairFindings.h>

namespace krTools
{

/// Checks what CgReader passes over: semantics that are missing, unknown, taken twice or not the ones that suit their
/// members, commas without a parameter, a fragment program or a statement in it that returns no colour, components named
/// by GLSL's letters, and programs that connect through different structs.
void checkCgText(const Source& vertex, const Source& fragment, PairFindings& findings);

} // namespace krTools
