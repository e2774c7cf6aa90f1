#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace krTargets
{

/// Something that glslang or the validator says.
struct Fault
{
    bool isFragment = false;
    std::size_t line = 0; ///< of the stage's text, from 1; 0: of no line
    std::string text;
};

/// The two stages' code.
struct Binaries
{
    std::vector<std::uint32_t> vertex;
    std::vector<std::uint32_t> fragment;
};

/// Compiles and links two texts in Vulkan GLSL, and validates the code.
/// @param faults  appended to; with any, the code is not to be used
[[nodiscard]] Binaries compileGlsl(std::string_view vertex, std::string_view fragment, std::vector<Fault>& faults);

} // namespace krTargets
