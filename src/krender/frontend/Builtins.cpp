#include "krender/frontend/private/Builtins.h"

#include <krender/shadergen/Target.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace krFrontend
{
namespace
{

// Spellings: GLSL 1.20, Cg, Vulkan GLSL. An empty one is the KRSL name.
using Spellings = std::array<BuiltinSpelling, kTargetLanguageCount>;

constexpr Spellings kSame{};

constexpr Spellings named(std::string_view glsl, std::string_view cg) { return {{{glsl}, {cg}, {glsl}}}; }

constexpr Spellings cgHelper(std::string_view name, std::string_view text) { return {{{}, {name, {}, text}, {}}}; }

constexpr Spellings kSaturate{{{"clamp", ", 0.0, 1.0"}, {}, {"clamp", ", 0.0, 1.0"}}};
constexpr Spellings kTexture{{{}, {}, {"texture"}}};
constexpr Spellings kTextureProj{{{}, {}, {"textureProj"}}};
constexpr Spellings kShadow1D{{{"shadow1DProj", ".x"}, {}, {"textureProj"}}};
constexpr Spellings kMod = cgHelper("kr_mod", R"(T kr_mod(T x, T y)
{
	return x - y * floor(x / y);
}
)");
constexpr Spellings kNot = cgHelper("kr_not", R"(B kr_not(B x)
{
	return !x;
}
)");

constexpr Spellings kLess = cgHelper("kr_lessThan", R"(B kr_lessThan(T x, T y)
{
	return x < y;
}
)");
constexpr Spellings kLessEqual = cgHelper("kr_lessThanEqual", R"(B kr_lessThanEqual(T x, T y)
{
	return x <= y;
}
)");
constexpr Spellings kGreater = cgHelper("kr_greaterThan", R"(B kr_greaterThan(T x, T y)
{
	return x > y;
}
)");
constexpr Spellings kGreaterEqual = cgHelper("kr_greaterThanEqual", R"(B kr_greaterThanEqual(T x, T y)
{
	return x >= y;
}
)");
constexpr Spellings kEqual = cgHelper("kr_equal", R"(B kr_equal(T x, T y)
{
	return x == y;
}
)");
constexpr Spellings kNotEqual = cgHelper("kr_notEqual", R"(B kr_notEqual(T x, T y)
{
	return x != y;
}
)");

constexpr bool kSpreads = true;

constexpr std::array kBuiltins{
    Builtin{"abs", "T:T", kSame},
    Builtin{"acos", "T:T", kSame},
    Builtin{"all", "b:B", kSame},
    Builtin{"any", "b:B", kSame},
    Builtin{"asin", "T:T", kSame},
    Builtin{"atan", "T:T", kSame},
    Builtin{"atan", "T:TT", named("atan", "atan2"), kSpreads},
    Builtin{"atan2", "T:TT", named("atan", "atan2"), kSpreads},
    Builtin{"ceil", "T:T", kSame},
    Builtin{"clamp", "T:TTT", kSame, kSpreads, 0b110},
    Builtin{"cos", "T:T", kSame},
    Builtin{"cross", "3:33", kSame},
    Builtin{"dFdx", "T:T", named("dFdx", "ddx")},
    Builtin{"dFdy", "T:T", named("dFdy", "ddy")},
    Builtin{"ddx", "T:T", named("dFdx", "ddx")},
    Builtin{"ddy", "T:T", named("dFdy", "ddy")},
    Builtin{"degrees", "T:T", kSame},
    Builtin{"distance", "f:TT", kSame},
    Builtin{"dot", "f:TT", kSame},
    Builtin{"equal", "B:BB", kEqual},
    Builtin{"equal", "B:JJ", kEqual},
    Builtin{"equal", "B:VV", kEqual},
    Builtin{"exp", "T:T", kSame},
    Builtin{"exp2", "T:T", kSame},
    Builtin{"faceforward", "T:TTT", kSame},
    Builtin{"floor", "T:T", kSame},
    Builtin{"frac", "T:T", named("fract", "frac")},
    Builtin{"fract", "T:T", named("fract", "frac")},
    Builtin{"fwidth", "T:T", kSame},
    Builtin{"greaterThan", "B:JJ", kGreater},
    Builtin{"greaterThan", "B:VV", kGreater},
    Builtin{"greaterThanEqual", "B:JJ", kGreaterEqual},
    Builtin{"greaterThanEqual", "B:VV", kGreaterEqual},
    Builtin{"inversesqrt", "T:T", named("inversesqrt", "rsqrt")},
    Builtin{"length", "f:T", kSame},
    Builtin{"lerp", "T:TTT", named("mix", "lerp"), kSpreads, 0b100},
    Builtin{"lessThan", "B:JJ", kLess},
    Builtin{"lessThan", "B:VV", kLess},
    Builtin{"lessThanEqual", "B:JJ", kLessEqual},
    Builtin{"lessThanEqual", "B:VV", kLessEqual},
    Builtin{"log", "T:T", kSame},
    Builtin{"log2", "T:T", kSame},
    Builtin{"max", "T:TT", kSame, kSpreads, 0b10},
    Builtin{"min", "T:TT", kSame, kSpreads, 0b10},
    Builtin{"mix", "T:TTT", named("mix", "lerp"), kSpreads, 0b100},
    Builtin{"mod", "T:TT", kMod, kSpreads, 0b10},
    Builtin{"mul", "M:MM", kSame},
    Builtin{"mul", "V:MV", kSame},
    Builtin{"mul", "V:VM", kSame},
    Builtin{"normalize", "T:T", kSame},
    Builtin{"not", "B:B", kNot},
    Builtin{"notEqual", "B:BB", kNotEqual},
    Builtin{"notEqual", "B:JJ", kNotEqual},
    Builtin{"notEqual", "B:VV", kNotEqual},
    Builtin{"pow", "T:TT", kSame, kSpreads},
    Builtin{"radians", "T:T", kSame},
    Builtin{"reflect", "T:TT", kSame},
    Builtin{"refract", "T:TTf", kSame},
    Builtin{"rsqrt", "T:T", named("inversesqrt", "rsqrt")},
    Builtin{"saturate", "T:T", kSaturate},
    Builtin{"shadow1DProj", "f:S4", kShadow1D},
    Builtin{"shadow2DProj", "f:W4", kTextureProj},
    Builtin{"sign", "T:T", kSame},
    Builtin{"sin", "T:T", kSame},
    Builtin{"smoothstep", "T:TTT", kSame, kSpreads, 0b011},
    Builtin{"sqrt", "T:T", kSame},
    Builtin{"step", "T:TT", kSame, kSpreads, 0b01},
    Builtin{"tan", "T:T", kSame},
    Builtin{"texture1D", "4:Af", kTexture},
    Builtin{"texture1DProj", "4:A2", kTextureProj},
    Builtin{"texture1DProj", "4:A4", kTextureProj},
    Builtin{"texture2D", "4:D2", kTexture},
    Builtin{"texture2DProj", "4:D3", kTextureProj},
    Builtin{"texture2DProj", "4:D4", kTextureProj},
    Builtin{"texture3D", "4:E3", kTexture},
    Builtin{"texture3DProj", "4:E4", kTextureProj},
    Builtin{"textureCube", "4:C3", kTexture},
    Builtin{"transpose", "M:M", kSame},
};
static_assert(std::is_sorted(kBuiltins.begin(), kBuiltins.end(),
                             [](const Builtin& a, const Builtin& b) { return a.name < b.name; }));

} // namespace

std::span<const Builtin> builtins() noexcept { return kBuiltins; }

std::span<const Builtin> findBuiltins(std::string_view name) noexcept
{
    const auto first = std::lower_bound(kBuiltins.begin(), kBuiltins.end(), name,
                                        [](const Builtin& row, std::string_view n) { return row.name < n; });
    const auto last = std::find_if(first, kBuiltins.end(), [&](const Builtin& row) { return row.name != name; });
    return {first, last};
}

bool isBuiltinWord(std::string_view word, TargetLanguage language) noexcept
{
    return std::any_of(kBuiltins.begin(), kBuiltins.end(),
                       [word, language](const Builtin& row)
                       { return row.name == word || row.spellings[static_cast<unsigned>(language)].name == word; });
}

Type signatureType(char letter, unsigned size) noexcept
{
    const auto n = static_cast<std::uint8_t>(size);
    switch (letter)
    {
    case 'T':
    case 'V':
        return {BaseType::Float, n, 0};
    case 'J':
        return {BaseType::Int, n, 0};
    case 'B':
        return {BaseType::Bool, n, 0};
    case 'M':
        return {BaseType::Matrix, n, 0};
    case 'b':
        return kBoolType;
    case '2':
    case '3':
    case '4':
        return {BaseType::Float, static_cast<std::uint8_t>(letter - '0'), 0};
    case 'A':
        return {BaseType::Sampler1D, 0, 0};
    case 'D':
        return {BaseType::Sampler2D, 0, 0};
    case 'E':
        return {BaseType::Sampler3D, 0, 0};
    case 'C':
        return {BaseType::SamplerCube, 0, 0};
    case 'S':
        return {BaseType::Sampler1DShadow, 0, 0};
    case 'W':
        return {BaseType::Sampler2DShadow, 0, 0};
    default:
        return kFloatType;
    }
}

std::string signatureText(const Builtin& builtin, bool hasResult)
{
    const auto letterText = [](char letter) -> std::string
    {
        switch (letter)
        {
        case 'T':
            return "float...float4";
        case 'V':
            return "float2...float4";
        case 'J':
            return "int2...int4";
        case 'B':
            return "bool2...bool4";
        case 'M':
            return "matrix2...matrix4";
        default:
            return typeName(signatureType(letter, 1));
        }
    };
    std::string text = hasResult ? letterText(builtin.signature[0]) + " " : std::string();
    text += builtin.name;
    text += '(';
    for (std::size_t i = 2; i < builtin.signature.size(); ++i)
        text += (i == 2 ? "" : ", ") + letterText(builtin.signature[i]);
    return text + ")";
}

} // namespace krFrontend
