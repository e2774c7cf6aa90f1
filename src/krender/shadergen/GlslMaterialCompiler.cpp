#include <krender/shadergen/GlslMaterialCompiler.h>

#include "krender/shadergen/private/FragmentWriter.h"
#include "krender/shadergen/private/GlslTexts.h"
#include <krender/platform/String.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/InterpolantBank.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <string>
#include <string_view>

namespace
{

constexpr std::string_view kAttributes = R"(	// STANDARD PARAMETERS
	attribute vec3 gObjTangent;
	
	// CUSTOM PARAMETERS
)";

constexpr std::string_view kVaryings = R"(	// STANDARD PARAMETERS
	varying vec3 gWorldPos;
	varying vec3 var_gWorldNormal;
	varying vec3 var_gWorldTangent;
	
	// CUSTOM PARAMETERS
)";

/// Maps the shading language's type names onto GLSL's. Deliberate: it follows the declarations, which have GLSL's types.
constexpr std::string_view kPrologue = R"(
#define matrix4 mat4
#define matrix3 mat3
#define float4 vec4
#define float3 vec3
#define float2 vec2
#define mul(a,b) ((a)*(b))
#define shadow2DProj(a,b) (shadow2DProj((a),(b)).x)

)";

constexpr std::string_view kVertexHead = R"(uniform mat4 objToWorldMatrix;
uniform mat4 objToWorldMatrix_invtrans;

void main()
{
	// Compute the window/clip-space and world-space vertex positions.
	gl_Position = ftransform();
	gWorldPos = (objToWorldMatrix * gl_Vertex).xyz;
	
	// Copy the texture coordinates.
	//
)";

constexpr std::string_view kVertexTail = R"(	
	// Compute the world-space normal and tangent.
	//
	vec3 oNormal = normalize(gl_Normal);
	vec3 oTangent = normalize(gObjTangent);
	var_gWorldNormal = (objToWorldMatrix_invtrans * vec4(oNormal, 0.0)).xyz;
	var_gWorldTangent = (objToWorldMatrix_invtrans * vec4(oTangent, 0.0)).xyz;
	
}
)";

constexpr std::string_view kUniformsHead = R"(

//NODE-SPECIFIC UNIFORMS
//
)";

constexpr std::string_view kUniformsEnd = R"(
	// STANDARD PARAMETERS
	//
	uniform vec4 gEyePos;
)";

constexpr std::string_view kFragmentHead = "void main() \n";

constexpr FragmentSpelling kGlsl{
    .lightInputs = kGlslLightInputs,
    .materialInputs = kGlslMaterialInputs,
    .result = "\ngl_FragColor = outRGBA;",
    .uniformEnd = ";\n",
    .lightCommentNamesFunction = false,
    .samplerAliasIsMacro = true,
    .boolUniformIsInt = false,
};

/// @param extras  null writes the program as the host's own library has it
void compile(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights,
             FragmentExtras* extras, krString::CString& vertexProgram, krString::CString& fragmentProgram)
{
    std::string attributes;
    std::string varyings{kVaryings};
    std::string copies;
    std::string aliases{kGlslAliases};
    forEachVertexInput(material,
                       [&](const krShadingDag::ShadingAttribute& input)
                       {
                           const std::string_view name = input.name().view();
                           const krString::CString width = toString(dataTypeNumFloats(input.dataType()));
                           appendAll(attributes, {"\tattribute vec", width.view(), " ", name, ";\n"});
                           appendAll(varyings, {"varying vec", width.view(), " var_", name, ";\n"});
                           appendAll(copies, {"var_", name, " = ", name, ";\n"});
                           appendAll(aliases, {dataTypeName(input.dataType()), " ", name, " = var_", name, ";\n"});
                       });

    const FragmentSections sections = writeFragment(kGlsl, material, lights, aliases, extras);
    const UniformSections uniforms = declareUniforms(kGlsl, material, lights, sections, extras);

    vertexProgram = join({kAttributes, attributes, varyings, kPrologue, kVertexHead, copies, kVertexTail});
    fragmentProgram = joinFragment({varyings, kPrologue, kUniformsHead, uniforms.lights, "\n\t// MATERIAL\n\t//\n",
                                    uniforms.material, kUniformsEnd},
                                   {kFragmentHead, sections.body}, sections, extras);
    if (extras && extras->isTooLarge)
        vertexProgram = "";
}

} // namespace

void compileMaterialToGlsl(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights,
                           krString::CString& vertexProgram, krString::CString& fragmentProgram)
{
    compile(material, lights, nullptr, vertexProgram, fragmentProgram);
}

void compileMaterialToGlsl(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights,
                           FragmentExtras& extras, krString::CString& vertexProgram, krString::CString& fragmentProgram)
{
    compile(material, lights, &extras, vertexProgram, fragmentProgram);
}
