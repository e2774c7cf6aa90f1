#pragma once
#include <krender/shadergen/LightSpec.h>

#include <vector>

// The plain form of light expansion: clone the material, edit the tree, print it. The library prints the same text
// straight from the trees.

/// How a target spells what the plain form writes.
struct SplicerTarget
{
    const char* vec3;
    const char* uniformEnd;
    const char* result;
    bool commentNamesFunction;
    bool samplersAreMacros;
};

inline constexpr SplicerTarget kSplicerCg{"float3", ",\n", "\nreturn outRGBA;", true, false};
inline constexpr SplicerTarget kSplicerGlsl{"vec3", ";\n", "\ngl_FragColor = outRGBA;", false, true};

struct SplicedFragment
{
    krString::CString lightUniforms;
    krString::CString body;
};

/// @param material  with a body
/// @param lights    with bodies, and without illuminance blocks of their own
/// @param aliases   the text that the body begins with
[[nodiscard]] SplicedFragment spliceLights(const SplicerTarget& target, const krShadingDag::ShadingNodeSpec& material,
                                           const std::vector<LightSpec>& lights, const krString::CString& aliases);
