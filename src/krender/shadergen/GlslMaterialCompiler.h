#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <vector>

/// Writes the GLSL vertex and fragment programs of a material, as compileMaterialToCg does for Cg. They are GLSL 1.20
/// without a version line; a host whose materials have inputs "vertex float" also defines vec1 as float.
///
/// Uniforms become global variables. A vertex input becomes an attribute of the same name and a varying with the prefix
/// "var_"; the compiler sets no limit to their number. A light's uniform is copied into a variable of the light's block, a
/// sampler, which GLSL cannot copy, is given its short name by a macro.
///
/// @param material         borrowed; without a body it gives a fragment program without one
/// @param lights           in the order in which they run; null leaves the illuminance blocks as they are, an empty list
///                         removes them
/// @param vertexProgram    overwritten
/// @param fragmentProgram  overwritten
KRENDER_EXPORT void compileMaterialToGlsl(const krShadingDag::ShadingNodeSpec& material,
                                          const std::vector<LightSpec>* lights, krString::CString& vertexProgram,
                                          krString::CString& fragmentProgram);
