#pragma once
#include <common/Findings.h>
#include <common/Source.h>

namespace krTools
{

/// Finds in a program what the compilers of its language may not come to an end with, or not within their stack: lines of
/// the preprocessor that a source brought, of which a few hundred bytes can stand for gigabytes, and expressions of more
/// than 10,000 operators. What the front end makes has neither.
[[nodiscard]] Findings findUnbounded(const Source& program);

} // namespace krTools
