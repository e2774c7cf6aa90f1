#pragma once
#include <krender/shading/DataType.h>

namespace krShadingDag
{

// Deliberate: matrix2 is no matrix, a bool counts as one float, and ints count as none.
inline constexpr std::array<DataTypeInfo, kDataTypeCount> kDataTypes{{
    // bytes, vector, matrix, sampler, floats, float vector, dimension, indexed type, name
    {0, false, false, false, 0, false, 0, kInvalidType, "invalidType!"},
    {0, false, false, false, 0, false, 0, kInvalidType, "void"},
    {1, false, false, false, 1, false, 0, kInvalidType, "bool"},
    {4, true, false, false, 1, true, 1, kFloat, "float"},
    {8, true, false, false, 2, true, 2, kFloat, "float2"},
    {12, true, false, false, 3, true, 3, kFloat, "float3"},
    {16, true, false, false, 4, true, 4, kFloat, "float4"},
    {4, true, false, false, 0, false, 1, kInt, "int"},
    {8, true, false, false, 0, false, 2, kInt, "int2"},
    {12, true, false, false, 0, false, 3, kInt, "int3"},
    {16, true, false, false, 0, false, 4, kInt, "int4"},
    {16, false, false, false, 4, false, 2, kFloat2, "matrix2"},
    {36, false, true, false, 9, false, 3, kFloat3, "matrix3"},
    {64, false, true, false, 16, false, 4, kFloat4, "matrix4"},
    {4, false, false, true, 0, false, 0, kInvalidType, "sampler1D"},
    {4, false, false, true, 0, false, 0, kInvalidType, "sampler2D"},
    {4, false, false, true, 0, false, 0, kInvalidType, "sampler3D"},
    {4, false, false, true, 0, false, 0, kInvalidType, "samplerCube"},
    {4, false, false, true, 0, false, 0, kInvalidType, "sampler1DShadow"},
    {4, false, false, true, 0, false, 0, kInvalidType, "sampler2DShadow"},
    {4, false, false, false, 0, false, 0, kInvalidType, "string"},
}};

} // namespace krShadingDag
