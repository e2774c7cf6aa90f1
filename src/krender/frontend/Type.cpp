#include "krender/frontend/private/Type.h"

#include <krender/shading/DataType.h>

#include <array>
#include <string_view>

namespace krFrontend
{
namespace
{

struct TypeRow
{
    std::string_view name;
    Type type;
    DataType plain; ///< kInvalidType: full KRSL alone has it
};

constexpr std::array kTypes{
    TypeRow{"void", kVoidType, kVoid},
    TypeRow{"bool", kBoolType, kBool},
    TypeRow{"bool2", {BaseType::Bool, 2, 0}, kInvalidType},
    TypeRow{"bool3", {BaseType::Bool, 3, 0}, kInvalidType},
    TypeRow{"bool4", {BaseType::Bool, 4, 0}, kInvalidType},
    TypeRow{"float", kFloatType, kFloat},
    TypeRow{"float2", {BaseType::Float, 2, 0}, kFloat2},
    TypeRow{"float3", kFloat3Type, kFloat3},
    TypeRow{"float4", kFloat4Type, kFloat4},
    TypeRow{"int", kIntType, kInt},
    TypeRow{"int2", {BaseType::Int, 2, 0}, kInt2},
    TypeRow{"int3", {BaseType::Int, 3, 0}, kInt3},
    TypeRow{"int4", {BaseType::Int, 4, 0}, kInt4},
    TypeRow{"matrix2", {BaseType::Matrix, 2, 0}, kMatrix2},
    TypeRow{"matrix3", {BaseType::Matrix, 3, 0}, kMatrix3},
    TypeRow{"matrix4", {BaseType::Matrix, 4, 0}, kMatrix4},
    TypeRow{"sampler1D", {BaseType::Sampler1D, 0, 0}, kSampler1D},
    TypeRow{"sampler2D", {BaseType::Sampler2D, 0, 0}, kSampler2D},
    TypeRow{"sampler3D", {BaseType::Sampler3D, 0, 0}, kSampler3D},
    TypeRow{"samplerCube", {BaseType::SamplerCube, 0, 0}, kSamplerCube},
    TypeRow{"sampler1DShadow", {BaseType::Sampler1DShadow, 0, 0}, kSampler1DShadow},
    TypeRow{"sampler2DShadow", {BaseType::Sampler2DShadow, 0, 0}, kSampler2DShadow},
    TypeRow{"string", kStringType, kString},
};

} // namespace

std::string typeName(const Type& type)
{
    const Type single{type.base, type.size, 0};
    for (const TypeRow& row : kTypes)
        if (row.type == single)
            return type.isArray() ? std::string(row.name) + "[" + std::to_string(type.arrayLength) + "]"
                                  : std::string(row.name);
    return "unknown";
}

DataType dataType(const Type& type) noexcept
{
    for (const TypeRow& row : kTypes)
        if (row.type == type)
            return row.plain;
    return kInvalidType;
}

Type typeOf(DataType type) noexcept
{
    for (const TypeRow& row : kTypes)
        if (row.plain == type && type != kInvalidType)
            return row.type;
    return kNoType;
}

Type typeOfWord(std::string_view word) noexcept
{
    for (const TypeRow& row : kTypes)
        if (row.name == word)
            return row.type;
    return kNoType;
}

} // namespace krFrontend
