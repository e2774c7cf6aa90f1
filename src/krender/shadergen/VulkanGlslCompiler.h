#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <array>
#include <string_view>
#include <vector>

/// A value that the frame of every program takes from the host.
struct FrameValue
{
    std::string_view name;
    DataType type;
};

/// The first members of the uniform block, in order.
inline constexpr std::array kFrameUniforms{
    FrameValue{"kr_ModelViewProjectionMatrix", kMatrix4},
    FrameValue{"objToWorldMatrix", kMatrix4},
    FrameValue{"objToWorldMatrix_invtrans", kMatrix4},
    FrameValue{"gEyePos", kFloat4},
};
/// The first vertex inputs; the n-th has the location n.
inline constexpr std::array kFrameInputs{
    FrameValue{"kr_Vertex", kFloat4},
    FrameValue{"kr_Normal", kFloat3},
    FrameValue{"gObjTangent", kFloat3},
};
inline constexpr std::string_view kUniformBlock = "kr_Uniforms";

/// Writes the vertex and fragment programs of a material in GLSL 4.50 for Vulkan.
///
/// All uniforms but samplers stand in one block, set 0 and binding 0, which both programs declare alike: kFrameUniforms,
/// the material's uniforms, and those of each light, in the order of their headers and of the lights. A bool stands
/// there as an int. Samplers have the bindings from 1 on, in the same order. Vertex inputs have the locations behind
/// kFrameInputs. The clip space is that of the host's kr_ModelViewProjectionMatrix.
///
/// @param material         borrowed; as the front end lowers it for this language: texture reads and the like have other
///                         names here than in plain KRSL
/// @param lights           in the order in which they run; null leaves the illuminance blocks as they are, an empty list
///                         removes them
/// @param vertexProgram    overwritten
/// @param fragmentProgram  overwritten
KRENDER_EXPORT void compileMaterialToVulkanGlsl(const krShadingDag::ShadingNodeSpec& material,
                                                const std::vector<LightSpec>* lights, FragmentExtras& extras,
                                                krString::CString& vertexProgram, krString::CString& fragmentProgram);
