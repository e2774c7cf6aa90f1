#pragma once
#include <cstdint>
#include <string>
#include <vector>

/// A source that the generator made: one material and its lights.
struct GeneratedProgram
{
    std::string source;
    std::string material;
    std::vector<std::string> lights;
};

/// Makes a well-typed source of full KRSL, the same one for the same number. All its values are defined and tame: loops
/// end, nothing is divided by zero or read before it is set, so that every target has to draw the same picture.
/// @param isDrawable  leaves out what the tests' canvas cannot bind: bool uniforms, and samplers but for 2D and cubes
[[nodiscard]] GeneratedProgram generateProgram(std::uint64_t seed, bool isDrawable);
