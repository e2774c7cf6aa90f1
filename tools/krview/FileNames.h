#pragma once
#include <string>

/// The path of the first of krview-1.png, krview-2.png, ... in the working folder that does not exist.
/// @param ending  such as ".png"
[[nodiscard]] std::string freeFileName(const std::string& ending);
