#pragma once
#include <cstddef>
#include <string>

/// The number of tokens that clang's lexer finds in raw mode; whole token records, no preprocessing.
[[nodiscard]] std::size_t countTokensWithClang(const std::string& source);

/// Parses a GLSL source, #version line excluded, as a fragment shader; false when it has errors.
[[nodiscard]] bool parseWithGlslang(const std::string& source);
