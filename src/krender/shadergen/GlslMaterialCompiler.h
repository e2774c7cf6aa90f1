#pragma once
#include <krender/shadergen/LightSpec.h>

/// Writes the GLSL vertex and fragment programs of a material, as compileMaterialToCg does for Cg. They expect GLSL 1.20
/// and, where the material has an input "vertex float", the word vec1 defined as float.
///
/// Uniforms become global variables. A per-vertex input becomes an attribute of its name and a varying with the prefix
/// "var_"; there is no limit to them here.
///
/// @param material         borrowed and not changed; without a body it gives programs with an empty one
/// @param lights           in the order in which they run; null leaves the illuminance blocks as they stand, an empty list
///                         removes them
/// @param vertexProgram    overwritten
/// @param fragmentProgram  overwritten
KRENDER_EXPORT void compileMaterialToGlsl(const krShadingDag::ShadingNodeSpec& material,
                                          const std::vector<LightSpec>* lights, krString::CString& vertexProgram,
                                          krString::CString& fragmentProgram);
