#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace krTools
{

/// The candidates that a person who typed `name` may have meant, the nearest first; at most three.
[[nodiscard]] std::vector<std::string> nearNames(std::string_view name, const std::vector<std::string>& candidates);

/// The same as the end of a message: "; did you mean a, b or c?", or nothing when no candidate is near.
[[nodiscard]] std::string didYouMean(std::string_view name, const std::vector<std::string>& candidates);

} // namespace krTools
