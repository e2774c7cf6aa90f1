#pragma once
#include <string>

/// Tells the contents of a file from those that it had before, with its path.
[[nodiscard]] std::string fileStamp(const std::string& path);
