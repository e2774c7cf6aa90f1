#include <validation/CgReader.h>

#include <validation/GlslangLog.h>

#include <glslang/Public/ResourceLimits.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace krTools
{

namespace
{

/// Words that HLSL reserves, or types and functions that it has, and Cg has not. As names of variables they are right, and
/// as anything else undeclared.
constexpr std::string_view kForeignWords = R"(
line lineadj linear point shared string texture triangle triangleadj vector sampler
AppendStructuredBuffer Buffer ByteAddressBuffer ConstantBuffer ConsumeStructuredBuffer InputPatch LineStream OutputPatch
PointStream RWBuffer RWByteAddressBuffer RWStructuredBuffer RWTexture1D RWTexture1DArray RWTexture2D RWTexture2DArray
RWTexture3D SamplerComparisonState SamplerState StructuredBuffer SubpassInput SubpassInputMS Texture1D Texture1DArray
Texture2D Texture2DArray Texture2DMS Texture2DMSArray Texture3D TextureBuffer TextureCube TextureCubeArray TriangleStream
cbuffer centroid globallycoherent groupshared layout nointerpolation noperspective packoffset precise sample snorm
tbuffer unorm
min10float min10float1 min10float2 min10float3 min10float4 min12int min12int1 min12int2 min12int3 min12int4
min16float min16float1 min16float2 min16float3 min16float4 min16int min16int1 min16int2 min16int3 min16int4
min16uint min16uint1 min16uint2 min16uint3 min16uint4
uint uint1 uint1x1 uint1x2 uint1x3 uint1x4 uint2 uint2x1 uint2x2 uint2x3 uint2x4
uint3 uint3x1 uint3x2 uint3x3 uint3x4 uint4 uint4x1 uint4x2 uint4x3 uint4x4 uint64_t
AllMemoryBarrier AllMemoryBarrierWithGroupSync CheckAccessFullyMapped D3DCOLORtoUBYTE4 DeviceMemoryBarrier
DeviceMemoryBarrierWithGroupSync EvaluateAttributeAtCentroid EvaluateAttributeAtSample EvaluateAttributeSnapped
GetRenderTargetSampleCount GetRenderTargetSamplePosition GroupMemoryBarrier GroupMemoryBarrierWithGroupSync
InterlockedAdd InterlockedAnd InterlockedCompareExchange InterlockedCompareStore InterlockedExchange InterlockedMax
InterlockedMin InterlockedOr InterlockedXor QuadReadAcrossDiagonal QuadReadAcrossX QuadReadAcrossY QuadReadLaneAt
WaveActiveAllEqual WaveActiveAllEqualBool WaveActiveAllTrue WaveActiveAnyTrue WaveActiveBallot WaveActiveBitAnd
WaveActiveBitOr WaveActiveBitXor WaveActiveCountBits WaveActiveMax WaveActiveMin WaveActiveProduct WaveActiveSum
WaveGetLaneCount WaveGetLaneIndex WaveIsFirstLane WavePrefixCountBits WavePrefixProduct WavePrefixSum WaveReadLaneAt
WaveReadLaneFirst abort asdouble asfloat asint asuint countbits ddx_coarse ddx_fine ddy_coarse ddy_fine dst f16tof32
f32tof16 firstbithigh firstbitlow fma mad msad4 printf rcp reversebits
)";

/// What Cg has and HLSL has not.
constexpr std::string_view kPrologue = R"(
#define POSITION SV_Position
#define float1 float2 // glslang takes float1 for a scalar, and a scalar has no ".x" that could be written
#define matrix krslc_matrix
#define fixed half
#define fixed2 half2
#define fixed3 half3
#define fixed4 half4

struct krslc_Matrices
{
    float4x4 mvp;
};
struct krslc_State
{
    krslc_Matrices matrix;
};
uniform krslc_State glstate;

// Look-ups, and look-ups whose coordinates are divided by the last one.
float4 f4tex1D(sampler1D map, float s) { return tex1D(map, s); }
float4 f4tex2D(sampler2D map, float2 st) { return tex2D(map, st); }
float4 f4tex3D(sampler3D map, float3 stp) { return tex3D(map, stp); }
float4 f4texCUBE(samplerCUBE map, float3 towards) { return texCUBE(map, towards); }
float4 f4tex1Dproj(sampler1D map, float2 sq) { return f4tex1D(map, sq.x / sq.y); }
float4 f4tex1Dproj(sampler1D map, float4 stpq) { return f4tex1D(map, stpq.x / stpq.w); }
float4 f4tex2Dproj(sampler2D map, float3 stq) { return f4tex2D(map, stq.xy / stq.z); }
float4 f4tex2Dproj(sampler2D map, float4 stpq) { return f4tex2D(map, stpq.xy / stpq.w); }
float4 f4tex3Dproj(sampler3D map, float4 stpq) { return f4tex3D(map, stpq.xyz / stpq.w); }

// The depth comparison of shadow samplers, which here are ordinary ones.
float f1texcompare1D(sampler1D map, float3 stp) { return step(stp.z, f4tex1D(map, stp.x).x); }
float f1texcompare1D(sampler1D map, float4 stpq) { return step(stpq.z / stpq.w, f4tex1Dproj(map, stpq).x); }
float f1texcompare2D(sampler2D map, float3 stp) { return step(stp.z, f4tex2D(map, stp.xy).x); }
float f1texcompare2D(sampler2D map, float4 stpq) { return step(stpq.z / stpq.w, f4tex2Dproj(map, stpq).x); }
)";

constexpr std::string_view kVertexPrologue = R"(
#define main krslc_main
#define uniform
)";

constexpr std::string_view kVertexEntry = R"(
#undef main
#undef uniform
uniform float4x4 objToWorldMatrix;
uniform float4x4 objToWorldMatrix_invtrans;

vert2frag main(app2vert IN)
{
    return krslc_main(IN, glstate.matrix.mvp, objToWorldMatrix, objToWorldMatrix_invtrans);
}
)";

std::string hidingForeignWords()
{
    std::string text;
    for (std::string_view rest = kForeignWords; !rest.empty();)
    {
        const std::size_t begin = std::min(rest.find_first_not_of(" \n"), rest.size());
        const std::size_t end = std::min(rest.find_first_of(" \n", begin), rest.size());
        const std::string_view word = rest.substr(begin, end - begin);
        if (!word.empty())
            text.append("#define ").append(word).append(" ").append(kHiddenPrefix).append(word).append("\n");
        rest.remove_prefix(end);
    }
    return text;
}

/// Adds the messages of a log, of each line's errors the first: the front end loses its way in the rest of the line.
void addFirstOfEachLine(std::string_view log, const Source& program, Findings& findings)
{
    Findings all;
    addLog(log, program, 1, all);
    std::size_t lastLine = 0;
    for (const Finding& finding : all.kept())
    {
        const std::size_t line = program.place(finding.position).line;
        if (finding.severity == Severity::Error && std::exchange(lastLine, line) == line)
            continue;
        findings.add(finding);
    }
}

} // namespace

CgReader::CgReader(EShLanguage stage) : fStage((startGlslang(), stage)), fShader(stage) {}

bool CgReader::read(const Source& program, Findings& findings)
{
    const bool isVertex = fStage == EShLangVertex;
    const std::string before = hidingForeignWords().append(kPrologue).append(isVertex ? kVertexPrologue : "\n");
    const std::string_view text = program.text();
    const std::string_view after = isVertex ? kVertexEntry : "\n";
    const std::array<const char*, 3> strings{before.data(), text.data(), after.data()};
    const std::array<int, 3> lengths{static_cast<int>(before.size()), static_cast<int>(text.size()),
                                     static_cast<int>(after.size())};
    fShader.setStringsWithLengths(strings.data(), lengths.data(), static_cast<int>(strings.size()));
    fShader.setEntryPoint("main");
    fShader.setSourceEntryPoint("main");
    fShader.setEnvInput(glslang::EShSourceHlsl, fStage, glslang::EShClientVulkan, 100);
    fShader.setEnvClient(glslang::EShClientVulkan, glslang::EShTargetVulkan_1_0);
    fShader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);
    fShader.setAutoMapBindings(true);
    fShader.setAutoMapLocations(true);
    constexpr auto kMessages =
        static_cast<EShMessages>(EShMsgSpvRules | EShMsgVulkanRules | EShMsgReadHlsl | EShMsgHlslDX9Compatible);
    constexpr int kVersion = 500;
    const bool compiled = fShader.parse(GetDefaultResources(), kVersion, false, kMessages);
    addFirstOfEachLine(fShader.getInfoLog(), program, findings);
    if (compiled)
    {
        fProgram.addShader(&fShader);
        if (fProgram.link(kMessages) && fProgram.mapIO())
            return !findings.hasErrors();
        forEachMessage(fProgram.getInfoLog(),
                       [&findings](Severity, std::string_view message) { findings.error(0, std::string(message)); });
    }
    if (!findings.hasErrors())
        findings.error(0, "this program does not compile");
    return false;
}

} // namespace krTools
