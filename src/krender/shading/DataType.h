#pragma once
#include <krender/Export.h>

#include <array>
#include <cstdint>

/// The data types of the shading language.
enum DataType : std::uint32_t
{
    kInvalidType,
    kVoid,
    kBool,
    kFloat,
    kFloat2,
    kFloat3,
    kFloat4,
    kInt,
    kInt2,
    kInt3,
    kInt4,
    kMatrix2,
    kMatrix3,
    kMatrix4,
    kSampler1D,
    kSampler2D,
    kSampler3D,
    kSamplerCube,
    kSampler1DShadow,
    kSampler2DShadow,
    kString,
};

/// The number of data types, the invalid one included.
inline constexpr unsigned kDataTypeCount = 21;

/// The facts about one data type.
struct DataTypeInfo
{
    std::uint32_t byteSize; ///< storage of one value, in bytes
    bool isVector;          ///< float and int scalars and vectors
    bool isMatrix;
    bool isSampler;
    std::uint32_t numFloats; ///< float components
    bool isFloatVector;      ///< float to float4
    std::uint32_t maxDim;    ///< components that can be indexed or swizzled; rows for a matrix
    DataType indexedType;    ///< type of one element under indexing
    const char* name;
};

/// The facts about every data type, indexed by its value.
KRENDER_EXPORT extern const std::array<DataTypeInfo, kDataTypeCount> dataTypeInfo;

/// The float types by their number of components less one. Nothing in the library reads it; it is there for hosts.
KRENDER_EXPORT extern const std::array<DataType, 4> floatConversion;

// Look-ups in the table. None checks its argument: a value outside it is the caller's fault.
[[nodiscard]] inline bool isSampler(DataType type) noexcept { return dataTypeInfo[type].isSampler; }
[[nodiscard]] inline const char* dataTypeName(DataType type) noexcept { return dataTypeInfo[type].name; }
[[nodiscard]] inline std::uint32_t dataTypeNumFloats(DataType type) noexcept { return dataTypeInfo[type].numFloats; }
[[nodiscard]] inline bool isFloatVector(DataType type) noexcept { return dataTypeInfo[type].isFloatVector; }
[[nodiscard]] inline std::uint32_t maxDim(DataType type) noexcept { return dataTypeInfo[type].maxDim; }
[[nodiscard]] inline DataType indexedType(DataType type) noexcept { return dataTypeInfo[type].indexedType; }

/// The type of that exact name; kInvalidType for any other text and for null.
[[nodiscard]] KRENDER_EXPORT DataType convertToDataType(const char* name) noexcept;
