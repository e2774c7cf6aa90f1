#pragma once
#include <string>
#include <vector>

/// A rule in the syntax of make: the targets depend on the sources.
[[nodiscard]] std::string makeRule(const std::vector<std::string>& targets, const std::vector<std::string>& sources);
