#pragma once
#include <krender/shadergen/LightSpec.h>

/// Writes the Cg vertex and fragment programs of a material.
///
/// Uniform inputs (range uniform to uniform) become parameters of the fragment program. Per-vertex inputs (vertex to
/// vertex) travel through the texture-coordinate registers: seven fit into the vertex program, and five registers, shared
/// by component, are left between the stages. An input past that leaves a text in the program at which the target's
/// compiler stops. Inputs of any other range are left to the material's code, as are those with the names of the standard
/// values gWorldPos, gWorldNormal and gWorldTangent.
///
/// Each illuminance block gives way to one copy of itself a light, behind that light's code; both run in blocks of their
/// own. A light's uniform u becomes the parameter made of the light's name and u, once for each illuminance block: a
/// material with several takes lights without uniforms.
///
/// @param material         borrowed and not changed; without a body it gives programs with an empty one
/// @param lights           in the order in which they run; null leaves the illuminance blocks as they stand, an empty list
///                         removes them
/// @param vertexProgram    overwritten
/// @param fragmentProgram  overwritten
KRENDER_EXPORT void compileMaterialToCg(const krShadingDag::ShadingNodeSpec& material,
                                        const std::vector<LightSpec>* lights, krString::CString& vertexProgram,
                                        krString::CString& fragmentProgram);
