#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// The languages that programs are written in. Several targets may share one.
enum class TargetLanguage : std::uint8_t
{
    Glsl120,
    Cg,
    VulkanGlsl,
};

inline constexpr unsigned kTargetLanguageCount = 3;

/// What a target cannot do, a bit each.
enum TargetLack : std::uint8_t
{
    kLacksNothing = 0,
    kLacksVolumes = 1,     ///< sampler3D
    kLacksShadows = 2,     ///< sampler2DShadow
    kLacksLineShadows = 4, ///< sampler1DShadow
    kLacksOpenLoops = 8,   ///< loops, but for a "for" that counts a variable from a constant to a constant
    kLacksOpenIndices = 16, ///< indices, but for constants and the variables of such loops
};

/// What programs can be written for.
struct Target
{
    std::string_view name; ///< as people call it: "glsl"
    TargetLanguage language;
    std::string_view vertexEnding; ///< of a file's name, with the point
    std::string_view fragmentEnding;
    /// What a compiler that is not told otherwise needs ahead of a program; empty where nothing is missing.
    std::string_view preamble;
    /// The last statement of a material that ends before its body does.
    std::string_view earlyResult;
    /// How many of the material's vertex inputs fit, one register or location each; 0: any number.
    unsigned vertexInputs;
    /// The registers of four components between the stages, shared by component; 0: any number.
    unsigned interpolants;
    /// How many samplers fit; 0: any number.
    unsigned samplers;
    /// The bytes that the uniform block may have; 0: any number, or the target has no block.
    unsigned blockBytes;
    std::uint8_t lacks; ///< of TargetLack
    /// Whether what compile writes is the text that the library krender-targets translates for the target.
    bool isTranslated;
    /// Words that a name in a program may not be, ordered: keywords, those kept for later, and the programs' own macros.
    std::span<const std::string_view> reservedWords;
    void (*compile)(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights,
                    FragmentExtras& extras, krString::CString& vertexProgram, krString::CString& fragmentProgram);

    [[nodiscard]] KRENDER_EXPORT bool isReserved(std::string_view word) const noexcept;
};

/// All targets, in the order in which lists show them.
[[nodiscard]] KRENDER_EXPORT std::span<const Target> targets() noexcept;
/// The target of that name, or null.
[[nodiscard]] KRENDER_EXPORT const Target* findTarget(std::string_view name) noexcept;
