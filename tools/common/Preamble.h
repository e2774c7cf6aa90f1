#pragma once
#include <string_view>

namespace krTools
{

/// What goes ahead of a generated GLSL program for a driver of version 1.20: the version, and the types that the program
/// does not define itself.
inline constexpr std::string_view kGlsl120Preamble = R"(#version 120
#define vec1 float
#define int2 ivec2
#define int3 ivec3
#define int4 ivec4
#define matrix2 mat2
)";

} // namespace krTools
