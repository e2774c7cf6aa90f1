#pragma once
#include <krender/shading/DataType.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace krFrontend
{

enum class BaseType : std::uint8_t
{
    None, ///< of an expression with an error: it causes no further ones
    Void,
    Bool,
    Int,
    Float,
    Matrix,
    Sampler1D,
    Sampler2D,
    Sampler3D,
    SamplerCube,
    Sampler1DShadow,
    Sampler2DShadow,
    String,
};

/// A type of full KRSL: the data types, bool vectors, and arrays.
struct Type
{
    BaseType base = BaseType::None;
    std::uint8_t size = 0;         ///< components of a scalar or vector, rows of a matrix; else 0
    std::uint32_t arrayLength = 0; ///< 0: no array

    friend constexpr bool operator==(const Type&, const Type&) noexcept = default;

    [[nodiscard]] constexpr bool isKnown() const noexcept { return base != BaseType::None; }
    [[nodiscard]] constexpr bool isArray() const noexcept { return arrayLength != 0; }
    [[nodiscard]] constexpr bool isNumeric() const noexcept
    {
        return (base == BaseType::Int || base == BaseType::Float) && !isArray();
    }
    [[nodiscard]] constexpr bool isScalar() const noexcept
    {
        return size == 1 && base >= BaseType::Bool && base <= BaseType::Float && !isArray();
    }
    [[nodiscard]] constexpr bool isVector() const noexcept
    {
        return size > 1 && base >= BaseType::Bool && base <= BaseType::Float && !isArray();
    }
    [[nodiscard]] constexpr bool isMatrix() const noexcept { return base == BaseType::Matrix && !isArray(); }
    [[nodiscard]] constexpr bool isSampler() const noexcept
    {
        return base >= BaseType::Sampler1D && base <= BaseType::Sampler2DShadow;
    }
    /// Of the component, or the column of a matrix; None for what cannot be indexed.
    [[nodiscard]] constexpr Type element() const noexcept
    {
        if (isArray())
            return {base, size, 0};
        if (isMatrix())
            return {BaseType::Float, size, 0};
        return isVector() ? Type{base, 1, 0} : Type{};
    }
};

inline constexpr Type kNoType{};
inline constexpr Type kVoidType{BaseType::Void, 0, 0};
inline constexpr Type kBoolType{BaseType::Bool, 1, 0};
inline constexpr Type kIntType{BaseType::Int, 1, 0};
inline constexpr Type kFloatType{BaseType::Float, 1, 0};
inline constexpr Type kFloat3Type{BaseType::Float, 3, 0};
inline constexpr Type kFloat4Type{BaseType::Float, 4, 0};
inline constexpr Type kStringType{BaseType::String, 0, 0};

/// The type as KRSL writes it: "float3", "bool2", "float[4]".
[[nodiscard]] std::string typeName(const Type& type);
/// The plain type; kInvalidType for a bool vector or an array, which plain KRSL does not have.
[[nodiscard]] DataType dataType(const Type& type) noexcept;
[[nodiscard]] Type typeOf(DataType type) noexcept;
/// The type of that name, without arrays; None for any other word.
[[nodiscard]] Type typeOfWord(std::string_view word) noexcept;

} // namespace krFrontend
