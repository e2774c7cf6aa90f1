#pragma once
#include "krender/frontend/private/Type.h"
#include <krender/shadergen/Target.h>

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace krFrontend
{

/// How a target has a built-in function.
struct BuiltinSpelling
{
    std::string_view name;        ///< as called; empty: under its KRSL name
    std::string_view suffix = {}; ///< put before the ")" of the call, or behind it where it begins with a point
    /// A function of our own that a program gets with its first call; T stands for the type of its arguments, B for the
    /// bool vector of that size. Empty: the target has the function.
    std::string_view helper = {};
};

/// A function that every target has or gets.
///
/// A signature is the result, a colon and the arguments, one letter each: T float to float4, V float2 to float4, J int2
/// to int4, B bool2 to bool4, M matrix2 to matrix4, all of one size in a call; f float, 2 3 4 float2 to float4, b bool,
/// and A D E C S W the samplers 1D, 2D, 3D, Cube, 1DShadow, 2DShadow.
struct Builtin
{
    std::string_view name;
    std::string_view signature;
    std::array<BuiltinSpelling, kTargetLanguageCount> spellings; ///< indexed by TargetLanguage
    /// A float argument stands for a vector of equal components.
    bool spreads = false;
    /// The arguments, a bit each, that GLSL takes as floats beside vectors when all of them are.
    unsigned scalarInGlsl = 0;

    [[nodiscard]] unsigned argumentCount() const noexcept { return static_cast<unsigned>(signature.size()) - 2; }
};

/// All of them, ordered by name.
[[nodiscard]] std::span<const Builtin> builtins() noexcept;
/// Those of one name.
[[nodiscard]] std::span<const Builtin> findBuiltins(std::string_view name) noexcept;

/// Whether the word is a built-in's name, in KRSL or in a target's language.
[[nodiscard]] bool isBuiltinWord(std::string_view word, TargetLanguage language) noexcept;

/// The type that a letter of a signature stands for in a call of that size.
[[nodiscard]] Type signatureType(char letter, unsigned size) noexcept;
/// A signature for people, such as "mix(float...float4, float...float4, float)".
/// @param hasResult  whether the type of the result stands ahead of it
[[nodiscard]] std::string signatureText(const Builtin& builtin, bool hasResult);
/// Whether the letter stands for types of several sizes.
[[nodiscard]] constexpr bool isGenericLetter(char letter) noexcept
{
    return letter == 'T' || letter == 'V' || letter == 'J' || letter == 'B' || letter == 'M';
}

} // namespace krFrontend
