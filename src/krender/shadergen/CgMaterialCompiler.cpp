#include <krender/shadergen/CgMaterialCompiler.h>

#include "krender/shadergen/private/FragmentWriter.h"
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

constexpr std::string_view kAppToVertHead = R"(struct app2vert
{
	// STANDARD PARAMETERS
	float4 gObjPos		: POSITION;
	float3 gObjNormal	: NORMAL;
	float3 gObjTangent	: TEXCOORD0;
	
	// CUSTOM PARAMETERS
)";

constexpr std::string_view kVertToFragHead = R"(struct vert2frag
{
	// STANDARD PARAMETERS
	float4 gWindowPos		: POSITION;
	float3 gWorldPos		: TEXCOORD0;
	float3 gWorldNormal		: TEXCOORD1;
	float3 gWorldTangent		: TEXCOORD2;
	
	// CUSTOM PARAMETERS
)";

/// Maps the shading language's type names and texture functions onto Cg's.
constexpr std::string_view kPrologue = R"(
#define samplerCube samplerCUBE
#define sampler1DShadow sampler1D
#define sampler2DShadow sampler2D
#define matrix4 float4x4
#define matrix3 float3x3
#define texture1D(t,s) f4tex1D(t,s)
#define texture1DProj(t,s) f4tex1Dproj(t,s)
#define texture2D(t,s) f4tex2D(t,s)
#define texture2DProj(t,s) f4tex2Dproj(t,s)
#define texture3D(t,s) f4tex3D(t,s)
#define texture3DProj(t,s) f4tex3Dproj(t,s)
#define textureCube(tex, s) f4texCUBE(tex, s)
#define shadow1DProj(t,s) f1texcompare1D(t,s)
#define shadow2DProj(t,s) f1texcompare2D(t,s)
)";

constexpr std::string_view kVertexHead = R"(vert2frag main(app2vert IN,
	uniform float4x4 modelViewProj,
	uniform float4x4 objToWorldMatrix,
	uniform float4x4 objToWorldMatrix_invtrans)
{
	vert2frag OUT;
	modelViewProj = glstate.matrix.mvp;

	// Compute the window/clip-space and world-space vertex positions.
	OUT.gWindowPos = mul(modelViewProj, IN.gObjPos);
	OUT.gWorldPos = mul(objToWorldMatrix, IN.gObjPos).xyz;
	
	// Copy the texture coordinates.
	//
)";

constexpr std::string_view kVertexTail = R"(	
	// Compute the world-space normal and tangent.
	//
	float3 oNormal = normalize(IN.gObjNormal);
	float3 oTangent = normalize(IN.gObjTangent);
	OUT.gWorldNormal = mul(objToWorldMatrix_invtrans, float4(oNormal, 0)).xyz;
	OUT.gWorldTangent = mul(objToWorldMatrix_invtrans, float4(oTangent, 0)).xyz;
	
	return OUT;
}
)";

constexpr std::string_view kFragmentHead = R"(
// FRAGMENT PROGRAM
//
float4 main(
	//NODE-SPECIFIC UNIFORMS
	//
)";

constexpr std::string_view kFragmentHeadEnd = R"(
	// STANDARD PARAMETERS
	//
	uniform float4 gEyePos,
	vert2frag IN) : COLOR
)";

constexpr std::string_view kAliases = R"(// GLOBAL AND ALIASED VARIABLES
//
float4 outRGBA;
float3 gWorldNormal = IN.gWorldNormal;
float3 gWorldPos = IN.gWorldPos;
float3 gWorldTangent = IN.gWorldTangent;
)";

constexpr FragmentSpelling kCg{
    .lightInputs = R"(// LIGHT-SPECIFIC INPUTS
float3 outLightWorldDir;
float3 outLightAmbientColor;
float3 outLightDiffuseColor;
float3 outLightSpecularColor;
)",
    .materialInputs = R"(// MATERIAL-SPECIFIC INPUTS
float3 gLightWorldDir = outLightWorldDir;
float3 gLightAmbientColor = outLightAmbientColor;
float3 gLightDiffuseColor = outLightDiffuseColor;
float3 gLightSpecularColor = outLightSpecularColor;

// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION)",
    .result = "\nreturn outRGBA;",
    .uniformEnd = ",\n",
    .lightCommentNamesFunction = true,
    .samplerAliasIsMacro = false,
    .boolUniformIsInt = false,
};

/// The number of texture-coordinate registers of either stage.
constexpr unsigned kRegisters = 8;

/// The value of a vertex input for which the application has no register left.
std::string_view zeroOf(DataType type) noexcept
{
    switch (type)
    {
    case kFloat:
        return "0";
    case kFloat2:
        return "float2(0,0)";
    case kFloat3:
        return "float3(0,0,0)";
    case kFloat4:
        return "float4(0,0,0,0)";
    default:
        return "A2V REGISTER OVERFLOW, NOT A RECOGNIZED DATATYPE";
    }
}

/// The code that passes the vertex inputs from the application to the vertex program and on to the fragment program.
struct Connections
{
    Connections()
    {
        appToVertBank.interpolant(0).reserve(true, true, true, false);
        for (unsigned i = 0; i < 3; ++i)
            vertToFragBank.interpolant(i).reserve(true, true, true, false);
    }

    void connect(const krShadingDag::ShadingAttribute& input)
    {
        const std::string_view name = input.name().view();
        const unsigned components = dataTypeNumFloats(input.dataType());
        bool ok = false;
        const krString::CString address = vertToFragBank.allocateInterpolant(components, ok, nullptr, nullptr);
        krString::CString index;
        krString::CString swizzle;
        // The address is not needed: the struct's member has the input's own name.
        (void)appToVertBank.allocateInterpolant(components, ok, &index, &swizzle);

        appendAll(copies, {"\tOUT._TEXCOORD", address.view(), " = "});
        if (ok)
        {
            appendAll(copies, {"IN.", name, ".", swizzle.view()});
            appendAll(appToVert,
                      {"\tfloat", toString(components).view(), " ", name, "\t\t: TEXCOORD", index.view(), ";\n"});
        }
        else
            copies += zeroOf(input.dataType());
        copies += ";\n";
        appendAll(aliases, {dataTypeName(input.dataType()), " ", name, " = IN._TEXCOORD", address.view(), ";\n"});
    }

    InterpolantBank appToVertBank{kRegisters, false};
    InterpolantBank vertToFragBank{kRegisters, true};
    std::string appToVert;         ///< members of the application's struct
    std::string copies;            ///< statements of the vertex program
    std::string aliases{kAliases}; ///< declarations of the fragment program
};

/// @param extras  null writes the program as the host's own library has it
void compile(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights,
             FragmentExtras* extras, krString::CString& vertexProgram, krString::CString& fragmentProgram)
{
    Connections connections;
    forEachVertexInput(material, [&](const krShadingDag::ShadingAttribute& input) { connections.connect(input); });

    const krString::CString connectors =
        join({"// CONNECTORS\n//\n", kAppToVertHead, connections.appToVert, "};\n\n", kVertToFragHead,
              completeInterpolantsGeneration(connections.vertToFragBank).view(), kPrologue});
    const FragmentSections sections = writeFragment(kCg, material, lights, connections.aliases, extras);
    const UniformSections uniforms = declareUniforms(kCg, material, lights, sections, extras);

    vertexProgram = join({connectors.view(), kVertexHead, connections.copies, kVertexTail});
    fragmentProgram = joinFragment({connectors.view()},
                                   {kFragmentHead, uniforms.lights, "\n\t// MATERIAL\n\t//\n",
                                    uniforms.material, kFragmentHeadEnd, sections.body},
                                   sections, extras);
    if (extras && extras->isTooLarge)
        vertexProgram = "";
}

} // namespace

void compileMaterialToCg(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights,
                         krString::CString& vertexProgram, krString::CString& fragmentProgram)
{
    compile(material, lights, nullptr, vertexProgram, fragmentProgram);
}

void compileMaterialToCg(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights,
                         FragmentExtras& extras, krString::CString& vertexProgram, krString::CString& fragmentProgram)
{
    compile(material, lights, &extras, vertexProgram, fragmentProgram);
}
