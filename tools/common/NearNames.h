#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace krTools
{

/// The candidates closest to a name, which may be mistyped, the nearest first; at most three.
[[nodiscard]] std::vector<std::string> nearNames(std::string_view name, const std::vector<std::string>& candidates);

/// The same as the end of a message: "; did you mean a, b or c?", or nothing when no candidate is near.
[[nodiscard]] std::string didYouMean(std::string_view name, const std::vector<std::string>& candidates);

} // namespace krTools
