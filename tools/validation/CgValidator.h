#pragma once
#include <validation/PairFindings.h>

namespace krTools
{

/// Checks the two Cg programs of a material: each with CgReader, and on the text what that does not see.
///
/// It cannot see a profile's limits (instructions, registers), nor vectors made of too few numbers, as float4(1.0).
[[nodiscard]] PairFindings validateCg(const Source& vertex, const Source& fragment);

} // namespace krTools
