#define POSITION SV_Position
#define float1 float2 // glslang takes float1 for a scalar, and a scalar has no ".x" that could be written
#define matrix cgMatrix

struct CgMatrices
{
    float4x4 mvp;
};
struct CgState
{
    CgMatrices cgMatrix;
};
uniform CgState glstate;

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
float f1texcompare1D(sampler1D map, float4 stpq) { return step(stpq.z / stpq.w, f4tex1Dproj(map, stpq).x); }
float f1texcompare2D(sampler2D map, float4 stpq) { return step(stpq.z / stpq.w, f4tex2Dproj(map, stpq).x); }
