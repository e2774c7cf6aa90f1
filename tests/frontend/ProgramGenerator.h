#pragma once
#include <cstdint>
#include <string>
#include <utility>

/// The name by which generated sources include their second file.
inline constexpr const char* kIncludedName = "more.krs";

/// Sources with one material and its lights.
struct GeneratedProgram
{
    GeneratedProgram() = default;
    GeneratedProgram(std::string only) : source(std::move(only)) {}

    std::string source;   ///< has the material
    std::string included; ///< the text of kIncludedName
    std::string lights;   ///< a module of its own with the lights; empty: they stand with the material
};

enum class GeneratedKind
{
    Any,
    InOneFile,
    Drawable, ///< without what the tests' canvas cannot bind: bool uniforms, and samplers but for 2D and cubes
};

/// Makes well-typed sources of full KRSL, the same ones for the same number. All their values are defined and tame: loops
/// end, nothing is divided by zero or read before it is set, so that every target has to draw the same picture.
[[nodiscard]] GeneratedProgram generateProgram(std::uint64_t seed, GeneratedKind kind);
