#pragma once
#include <krender/frontend/Module.h>

#include <krender/Export.h>
#include <krender/frontend/Diagnostic.h>

#include <vector>

namespace krFrontend
{

/// Where a host that reads the module's first file with ShadingParser gets something else than the file says: warnings of
/// the name "plain", in the order of their places, at most one a function. A function that such a host refuses is among
/// them. Empty for a module with errors.
[[nodiscard]] KRENDER_EXPORT std::vector<Diagnostic> plainDifferences(const Module& module);

} // namespace krFrontend
