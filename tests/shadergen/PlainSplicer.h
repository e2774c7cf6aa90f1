#pragma once
#include <krender/shadergen/LightSpec.h>

/// The plain form of light expansion: clone the material, edit the tree, print it. The library prints the same text
/// straight from the trees; tests compare the two and benchmarks measure them.
namespace plain
{

struct Target
{
    const char* vec3;
    const char* uniformEnd;
    const char* result;
    bool commentNamesFunction;
    bool samplersAreMacros;
};

inline constexpr Target kCg{"float3", ",\n", "\nreturn outRGBA;", true, false};
inline constexpr Target kGlsl{"vec3", ";\n", "\ngl_FragColor = outRGBA;", false, true};

struct Fragment
{
    krString::CString lightUniforms;
    krString::CString body;
};

/// @param aliases  the text that the body begins with
[[nodiscard]] Fragment spliceLights(const Target& target, const krShadingDag::ShadingNodeSpec& material,
                                    const std::vector<LightSpec>* lights, const krString::CString& aliases);

} // namespace plain
