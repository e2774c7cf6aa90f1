#include <krender/shadergen/Target.h>

#include "krender/shadergen/private/VulkanWords.h"
#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shadergen/VulkanGlslCompiler.h>

#include <algorithm>
#include <array>
#include <string>

namespace
{

/// GLSL 1.20: its keywords, the words that it keeps for later, and the macros of the programs.
constexpr std::array kGlslWords = std::to_array<std::string_view>({
    "asm",
    "attribute",
    "bool",
    "break",
    "bvec2",
    "bvec3",
    "bvec4",
    "case",
    "cast",
    "centroid",
    "class",
    "const",
    "continue",
    "default",
    "discard",
    "do",
    "double",
    "dvec2",
    "dvec3",
    "dvec4",
    "else",
    "enum",
    "extern",
    "external",
    "false",
    "fixed",
    "flat",
    "float",
    "float2",
    "float3",
    "float4",
    "for",
    "fvec2",
    "fvec3",
    "fvec4",
    "goto",
    "half",
    "highp",
    "hvec2",
    "hvec3",
    "hvec4",
    "if",
    "in",
    "inline",
    "inout",
    "input",
    "int",
    "interface",
    "invariant",
    "ivec2",
    "ivec3",
    "ivec4",
    "long",
    "lowp",
    "mat2",
    "mat2x2",
    "mat2x3",
    "mat2x4",
    "mat3",
    "mat3x2",
    "mat3x3",
    "mat3x4",
    "mat4",
    "mat4x2",
    "mat4x3",
    "mat4x4",
    "matrix2",
    "matrix3",
    "matrix4",
    "mediump",
    "mul",
    "namespace",
    "noinline",
    "out",
    "output",
    "packed",
    "precision",
    "public",
    "return",
    "sampler1D",
    "sampler1DShadow",
    "sampler2D",
    "sampler2DRect",
    "sampler2DRectShadow",
    "sampler2DShadow",
    "sampler3D",
    "sampler3DRect",
    "samplerCube",
    "shadow2DProj",
    "short",
    "sizeof",
    "static",
    "struct",
    "switch",
    "template",
    "this",
    "true",
    "typedef",
    "uniform",
    "union",
    "unsigned",
    "using",
    "varying",
    "vec1",
    "vec2",
    "vec3",
    "vec4",
    "void",
    "volatile",
    "while",
});
static_assert(std::is_sorted(kGlslWords.begin(), kGlslWords.end()));

/// Cg: its keywords, those of C++ that it keeps, the macros of the programs, and what these call.
constexpr std::array kCgWords = std::to_array<std::string_view>({
    "asm",
    "asm_fragment",
    "auto",
    "bool",
    "break",
    "case",
    "catch",
    "char",
    "class",
    "column_major",
    "compile",
    "const",
    "const_cast",
    "continue",
    "decl",
    "default",
    "delete",
    "discard",
    "do",
    "double",
    "dword",
    "dynamic_cast",
    "else",
    "emit",
    "enum",
    "explicit",
    "extern",
    "f1texcompare1D",
    "f1texcompare2D",
    "f4tex1D",
    "f4tex1Dproj",
    "f4tex2D",
    "f4tex2Dproj",
    "f4tex3D",
    "f4tex3Dproj",
    "f4texCUBE",
    "false",
    "fixed",
    "float",
    "for",
    "friend",
    "get",
    "goto",
    "half",
    "if",
    "in",
    "inline",
    "inout",
    "int",
    "interface",
    "long",
    "matrix",
    "matrix2",
    "matrix3",
    "matrix4",
    "mutable",
    "namespace",
    "new",
    "operator",
    "out",
    "packed",
    "pass",
    "pixelfragment",
    "pixelshader",
    "private",
    "protected",
    "public",
    "register",
    "reinterpret_cast",
    "return",
    "row_major",
    "sampler",
    "sampler1D",
    "sampler1DShadow",
    "sampler2D",
    "sampler2DShadow",
    "sampler3D",
    "samplerCUBE",
    "samplerCube",
    "samplerRECT",
    "sampler_state",
    "shadow1DProj",
    "shadow2DProj",
    "shared",
    "short",
    "signed",
    "sizeof",
    "static",
    "static_cast",
    "string",
    "struct",
    "switch",
    "technique",
    "template",
    "texture",
    "texture1D",
    "texture1DProj",
    "texture2D",
    "texture2DProj",
    "texture3D",
    "texture3DProj",
    "textureCube",
    "this",
    "throw",
    "true",
    "try",
    "typedef",
    "typeid",
    "typename",
    "uniform",
    "union",
    "unsigned",
    "using",
    "vector",
    "vertexfragment",
    "vertexshader",
    "virtual",
    "void",
    "volatile",
    "while",
});
static_assert(std::is_sorted(kCgWords.begin(), kCgWords.end()));

/// Whether the word is one of the scalars and a shape behind it, as float3 or half4x4.
template <class Scalars>
bool hasShape(const Scalars& scalars, std::string_view word) noexcept
{
    const auto isCount = [](char c) { return c >= '1' && c <= '4'; };
    return std::any_of(scalars.begin(), scalars.end(),
                       [&](std::string_view scalar)
                       {
                           if (!word.starts_with(scalar))
                               return false;
                           const std::string_view shape = word.substr(scalar.size());
                           return (shape.size() == 1 && isCount(shape[0])) ||
                                  (shape.size() == 3 && isCount(shape[0]) && shape[1] == 'x' && isCount(shape[2]));
                       });
}

/// Cg's names of vectors and matrices: float3, half4x4, bool2.
bool isCgShape(std::string_view word) noexcept
{
    constexpr std::array<std::string_view, 6> kScalars{"bool", "double", "fixed", "float", "half", "int"};
    return hasShape(kScalars, word);
}

/// Names that a translation of Vulkan GLSL changes or gives a meaning: vectors and matrices of HLSL and the Metal
/// language, what it calls by a number, and the prefixes of its own functions.
bool isVulkanShape(std::string_view word) noexcept
{
    constexpr auto kScalars = std::to_array<std::string_view>(
        {"bfloat",   "bool",       "char",     "double",    "dword", "float", "half", "int",   "long",  "min10float",
         "min12int", "min16float", "min16int", "min16uint", "short", "uchar", "uint", "ulong", "ushort"});
    constexpr std::array<std::string_view, 7> kPrefixes{"GL_", "METAL_", "SPIRV_", "SPV_", "main0", "packed_", "spv"};
    return hasShape(kScalars, word) || word.starts_with('_') ||
           word.find("__") != std::string_view::npos ||
           std::any_of(kPrefixes.begin(), kPrefixes.end(),
                       [word](std::string_view prefix) { return word.starts_with(prefix); });
}

constexpr std::string_view kGlslPreamble = R"(#version 120
#define vec1 float
#define int2 ivec2
#define int3 ivec3
#define int4 ivec4
#define matrix2 mat2
)";

constexpr std::string_view kGlslResult = "{ gl_FragColor = outRGBA; return; }";

/// A row of a target whose programs are made of Vulkan GLSL. The limits are those that every implementation has room for,
/// without what the frame takes.
constexpr Target vulkanRow(std::string_view name, std::string_view vertexEnding, std::string_view fragmentEnding,
                           std::uint8_t lacks, bool isTranslated)
{
    return {.name = name,
            .language = TargetLanguage::VulkanGlsl,
            .vertexEnding = vertexEnding,
            .fragmentEnding = fragmentEnding,
            .preamble = "",
            .earlyResult = "{ kr_FragColor = outRGBA; return; }",
            .vertexInputs = 12,
            .interpolants = 0,
            .samplers = 16,
            .blockBytes = 16384,
            .lacks = lacks,
            .isTranslated = isTranslated,
            .reservedWords = kVulkanWords,
            .compile = compileMaterialToVulkanGlsl};
}

constexpr Target oldestEmbeddedRow()
{
    Target row = vulkanRow("essl100", ".essl100.vert", ".essl100.frag",
                           kLacksVolumes | kLacksShadows | kLacksLineShadows | kLacksOpenLoops | kLacksOpenIndices, true);
    row.vertexInputs = 5;
    row.samplers = 8;
    row.blockBytes = 0;
    return row;
}

constexpr std::array kTargets{
    Target{"glsl", TargetLanguage::Glsl120, ".vert", ".frag", kGlslPreamble, kGlslResult, 0, 0, 0, 0, kLacksNothing,
           false, kGlslWords, compileMaterialToGlsl},
    Target{"cg", TargetLanguage::Cg, ".vert.cg", ".frag.cg", "", "return outRGBA;", 7, 5, 0, 0, kLacksNothing, false,
           kCgWords, compileMaterialToCg},
    vulkanRow("spirv", ".spirv.vert.spv", ".spirv.frag.spv", kLacksNothing, true),
    vulkanRow("glsl330", ".glsl330.vert", ".glsl330.frag", kLacksNothing, true),
    vulkanRow("glsl450", ".glsl450.vert", ".glsl450.frag", kLacksNothing, false),
    vulkanRow("essl300", ".essl300.vert", ".essl300.frag", kLacksLineShadows, true),
    oldestEmbeddedRow(),
    vulkanRow("hlsl", ".hlsl.vert", ".hlsl.frag", kLacksNothing, true),
    vulkanRow("msl", ".msl.vert", ".msl.frag", kLacksLineShadows, true),
};

} // namespace

bool Target::isReserved(std::string_view word) const noexcept
{
    return std::binary_search(reservedWords.begin(), reservedWords.end(), word) ||
           (language == TargetLanguage::Cg && isCgShape(word)) ||
           (language == TargetLanguage::VulkanGlsl && isVulkanShape(word));
}

std::span<const Target> targets() noexcept { return kTargets; }

const Target* findTarget(std::string_view name) noexcept
{
    const auto found =
        std::find_if(kTargets.begin(), kTargets.end(), [name](const Target& target) { return target.name == name; });
    return found == kTargets.end() ? nullptr : &*found;
}
