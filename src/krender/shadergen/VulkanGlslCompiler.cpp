#include <krender/shadergen/VulkanGlslCompiler.h>

#include "krender/shadergen/private/FragmentWriter.h"
#include "krender/shadergen/private/GlslTexts.h"
#include <krender/platform/String.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/InterpolantBank.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <array>
#include <string>
#include <string_view>

namespace
{

/// The shading language's type names.
constexpr std::string_view kPrologue = R"(#version 450
#extension GL_GOOGLE_cpp_style_line_directive : require
#define matrix4 mat4
#define matrix3 mat3
#define matrix2 mat2
#define float4 vec4
#define float3 vec3
#define float2 vec2
#define int4 ivec4
#define int3 ivec3
#define int2 ivec2
#define mul(a,b) ((a)*(b))

)";

constexpr std::string_view kVertexMain = R"(
void main()
{
	// Compute the window/clip-space and world-space vertex positions.
	gl_Position = kr_ModelViewProjectionMatrix * kr_Vertex;
	gWorldPos = (objToWorldMatrix * kr_Vertex).xyz;

	// Compute the world-space normal and tangent.
	//
	vec3 oNormal = normalize(kr_Normal);
	vec3 oTangent = normalize(gObjTangent);
	var_gWorldNormal = (objToWorldMatrix_invtrans * vec4(oNormal, 0.0)).xyz;
	var_gWorldTangent = (objToWorldMatrix_invtrans * vec4(oTangent, 0.0)).xyz;

	// Copy the texture coordinates.
	//
)";

constexpr FragmentSpelling kVulkanGlsl{
    .lightInputs = kGlslLightInputs,
    .materialInputs = kGlslMaterialInputs,
    .result = "\nkr_FragColor = outRGBA;",
    .uniformEnd = "",
    .lightCommentNamesFunction = false,
    .samplerAliasIsMacro = true,
    .boolUniformIsInt = true,
};

/// What passes from the vertex to the fragment program in every program.
constexpr std::array<std::string_view, 3> kFrameVaryings{"gWorldPos", "var_gWorldNormal", "var_gWorldTangent"};

/// Declarations with locations that count up.
class Located
{
public:
    explicit Located(std::string_view direction) : fDirection(direction) {}

    void add(std::string_view type, std::string_view prefix, std::string_view name)
    {
        appendAll(fText, {"layout(location = ", toString(fCount++).view(), ") ", fDirection, " ", type, " ", prefix,
                          name, ";\n"});
    }

    [[nodiscard]] const std::string& text() const noexcept { return fText; }

private:
    std::string fText;
    std::string_view fDirection;
    unsigned fCount = 0;
};

/// The uniforms as both programs declare them.
struct Uniforms
{
    Uniforms(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights)
    {
        appendAll(block, {"\nlayout(std140, set = 0, binding = 0) uniform ", kUniformBlock, "\n{\n"});
        for (const FrameValue& value : kFrameUniforms)
            appendAll(block, {"\t", dataTypeName(value.type), " ", value.name, ";\n"});
        unsigned binding = 0;
        forEachUniform(
            material, lights,
            [&](std::string_view key, const krShadingDag::ShadingAttribute& input)
            {
                const DataType type = input.dataType();
                const std::string_view name = input.name().view();
                if (isSampler(type))
                    appendAll(samplers, {"layout(set = 0, binding = ", toString(++binding).view(), ") uniform ",
                                         dataTypeName(type), " ", key, name, ";\n"});
                else
                    appendAll(block, {"\t", dataTypeName(type == kBool ? kInt : type), " ", key, name, ";\n"});
            });
        block += "};\n";
    }

    std::string block;
    std::string samplers;
};

} // namespace

void compileMaterialToVulkanGlsl(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights,
                                 FragmentExtras& extras, krString::CString& vertexProgram,
                                 krString::CString& fragmentProgram)
{
    Located attributes("in");
    for (const FrameValue& value : kFrameInputs)
        attributes.add(dataTypeName(value.type), "", value.name);
    Located outputs("out");
    Located inputs("in");
    for (const std::string_view name : kFrameVaryings)
    {
        outputs.add("vec3", "", name);
        inputs.add("vec3", "", name);
    }
    std::string copies;
    std::string aliases{kGlslAliases};
    forEachVertexInput(material,
                       [&](const krShadingDag::ShadingAttribute& input)
                       {
                           const std::string_view name = input.name().view();
                           const std::string_view type = dataTypeName(input.dataType());
                           attributes.add(type, "", name);
                           outputs.add(type, "var_", name);
                           inputs.add(type, "var_", name);
                           appendAll(copies, {"\tvar_", name, " = ", name, ";\n"});
                           appendAll(aliases, {type, " ", name, " = var_", name, ";\n"});
                       });
    for (const krShadingDag::ShadingAttribute& input : material.inputs())
        if (isUniform(input) && input.dataType() == kBool)
            appendAll(aliases, {"bool ", input.name().view(), " = bool(", input.name().view(), ");\n"});

    const Uniforms uniforms(material, lights);
    const FragmentSections sections = writeFragment(kVulkanGlsl, material, lights, aliases, true);
    vertexProgram =
        join({kPrologue, attributes.text(), "\n", outputs.text(), uniforms.block, kVertexMain, copies, "}\n"});
    fragmentProgram = joinFragment({kPrologue, inputs.text(), "\nlayout(location = 0) out vec4 kr_FragColor;\n",
                                    uniforms.block, "\n", uniforms.samplers, "\n"},
                                   {"void main()\n", sections.body}, sections, &extras);
    if (extras.isTooLarge)
        vertexProgram = "";
}
