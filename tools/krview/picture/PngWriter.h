#pragma once
#include <string>

/// A PNG file of 8-bit RGBA pixels, the lowest row first. Throws a std::runtime_error.
/// @param hasAlpha  whether it keeps their alpha
[[nodiscard]] std::string encodePng(const unsigned char* pixels, unsigned width, unsigned height, bool hasAlpha);
