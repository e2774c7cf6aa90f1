#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <vector>

/// Writes the Cg vertex and fragment programs of a material.
///
/// Inputs with the range uniform to uniform become parameters of the fragment program. Inputs with the range vertex to
/// vertex are passed from the application to the vertex program, and from there to the fragment program, in
/// texture-coordinate registers. Inputs of any other range are left to the material's code, as are those called gWorldPos,
/// gWorldNormal or gWorldTangent, which every program has.
///
/// The application has seven registers, one for each vertex input. From the eighth on, an input of a float type is 0, and
/// one of any other type gets a text that no compiler accepts. Between the stages there are five registers, whose
/// components the inputs share; an input that finds no room there also gets such a text.
///
/// Each illuminance block is replaced by one block for each light, in which a copy of it follows the light's code. A
/// light's uniform becomes a parameter that is called by the light's name followed by the uniform's, and is declared once
/// for each illuminance block: a material with several can only have lights without uniforms. Illuminance blocks in the
/// code of a light stay as they are. Blocks more than 10,000 levels deep are replaced by a text that no compiler accepts.
///
/// @param material         borrowed; without a body it gives a fragment program without one
/// @param lights           in the order in which they run; null leaves the illuminance blocks as they are, an empty list
///                         removes them
/// @param vertexProgram    overwritten
/// @param fragmentProgram  overwritten
KRENDER_EXPORT void compileMaterialToCg(const krShadingDag::ShadingNodeSpec& material,
                                        const std::vector<LightSpec>* lights, krString::CString& vertexProgram,
                                        krString::CString& fragmentProgram);
