#pragma once
#include <array>
#include <string>

/// A page that shows a scene, made of the template that comes with the programs. Throws a krTools::FileError if the
/// template cannot be read.
/// @param title       any bytes
/// @param background  of the page around the picture
/// @param data        what the script reads: base64
[[nodiscard]] std::string pageOf(const std::string& title, const std::array<float, 3>& background,
                                 const std::string& data);
