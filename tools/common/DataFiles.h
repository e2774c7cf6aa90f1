#pragma once
#include <string>

namespace krTools
{

/// The path of a data file that comes with the programs, such as "stdlib.krs", found from where the running program
/// stands: in the build tree and in an installation alike, wherever either was moved.
[[nodiscard]] std::string dataFile(const std::string& name);

} // namespace krTools
