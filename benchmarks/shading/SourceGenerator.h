#pragma once
#include <cstddef>
#include <string>

/// Sources of many functions of some 200 bytes, the same functions in both languages; identifiers, numbers, comments and
/// block structure vary from one function to the next.
/// @param bytes  the length to reach; the last function is whole
[[nodiscard]] std::string makeKrslSource(std::size_t bytes);
[[nodiscard]] std::string makeGlslSource(std::size_t bytes);
