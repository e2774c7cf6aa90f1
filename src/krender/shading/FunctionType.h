#pragma once
#include <krender/platform/String.h>

#include <krender/Export.h>

#include <cstdint>

namespace krShadingDag
{

/// What a shading function is for.
class KRENDER_EXPORT FunctionType
{
public:
    enum TypeEnum : std::uint32_t
    {
        kRegular,
        kMaterial,
        kDisplacement,
        kLight,
        kTexture2D,
        kTexture3D,
    };

    constexpr FunctionType() noexcept = default;
    constexpr FunctionType(TypeEnum type) noexcept : fType(type) {}
    /// The type of that exact name; regular for any other text.
    explicit FunctionType(const krString::CString& text) noexcept;

    [[nodiscard]] constexpr TypeEnum type() const noexcept { return fType; }
    /// The name, "regular" for a value outside the enumeration.
    [[nodiscard]] const krString::CString& toString() const noexcept;
    [[nodiscard]] bool allowedInTSL() const noexcept { return true; }
    [[nodiscard]] bool allowedInKRSL() const noexcept { return fType != kTexture2D && fType != kTexture3D; }

    friend constexpr bool operator==(const FunctionType&, const FunctionType&) noexcept = default;

private:
    TypeEnum fType = kRegular;
};

/// The names of the function types, by value.
KRENDER_EXPORT extern const krString::CString FunctionTypeToString[6];

} // namespace krShadingDag
