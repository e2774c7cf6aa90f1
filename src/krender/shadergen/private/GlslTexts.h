#pragma once
#include <string_view>

// What the fragment programs of every GLSL have in common.

inline constexpr std::string_view kGlslAliases = R"(// GLOBAL AND ALIASED VARIABLES
//
vec4 outRGBA;
vec3 gWorldNormal = var_gWorldNormal;
vec3 gWorldTangent = var_gWorldTangent;
)";

/// Declares the variables that a light's code sets.
inline constexpr std::string_view kGlslLightInputs = R"(// LIGHT-SPECIFIC INPUTS
vec3 outLightWorldDir;
vec3 outLightAmbientColor;
vec3 outLightDiffuseColor;
vec3 outLightSpecularColor;
)";

/// Passes them on to the copy of the illuminance block.
inline constexpr std::string_view kGlslMaterialInputs = R"(// MATERIAL-SPECIFIC INPUTS
vec3 gLightWorldDir = outLightWorldDir;
vec3 gLightAmbientColor = outLightAmbientColor;
vec3 gLightDiffuseColor = outLightDiffuseColor;
vec3 gLightSpecularColor = outLightSpecularColor;

// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION)";
