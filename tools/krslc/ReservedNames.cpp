#include "ReservedNames.h"

#include <algorithm>
#include <array>

namespace
{

/// The values that every program has under their own names, and that no input declares.
constexpr std::array<std::string_view, 3> kStandardValues{"gWorldNormal", "gWorldPos", "gWorldTangent"};

/// The other names that generated programs declare or give a meaning to, in order.
constexpr std::array<std::string_view, 28> kReservedNames{
    "IN",
    "OUT",
    "app2vert",
    "gEyePos",
    "gLightAmbientColor",
    "gLightDiffuseColor",
    "gLightSpecularColor",
    "gLightWorldDir",
    "gObjNormal",
    "gObjPos",
    "gObjTangent",
    "gWindowPos",
    "glstate",
    "main",
    "modelViewProj",
    "mul",
    "oNormal",
    "oTangent",
    "objToWorldMatrix",
    "objToWorldMatrix_invtrans",
    "outLightAmbientColor",
    "outLightDiffuseColor",
    "outLightSpecularColor",
    "outLightWorldDir",
    "outRGBA",
    "samplerCUBE",
    "shadow2DProj",
    "vert2frag",
};
static_assert(std::is_sorted(kReservedNames.begin(), kReservedNames.end()));
constexpr std::array<std::string_view, 3> kReservedPrefixes{"_TEXCOORD", "gl_", "var_"};

} // namespace

bool isStandardValue(std::string_view name) noexcept
{
    return std::find(kStandardValues.begin(), kStandardValues.end(), name) != kStandardValues.end();
}

bool isReserved(std::string_view name) noexcept
{
    return std::binary_search(kReservedNames.begin(), kReservedNames.end(), name) ||
           std::any_of(kReservedPrefixes.begin(), kReservedPrefixes.end(),
                       [name](std::string_view prefix) { return name.starts_with(prefix); });
}
