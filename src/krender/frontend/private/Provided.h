#pragma once
#include "krender/frontend/private/Type.h"

#include <array>
#include <string_view>

namespace krFrontend
{

/// A value that programs have without an input.
struct ProvidedValue
{
    std::string_view name;
    Type type;
    bool inIlluminance; ///< within illuminance blocks alone, from the light at hand
};

/// Those outside illuminance come first; functions get them as arguments.
inline constexpr std::array kProvidedValues{
    ProvidedValue{"gWorldPos", kFloat3Type, false},         ProvidedValue{"gWorldNormal", kFloat3Type, false},
    ProvidedValue{"gWorldTangent", kFloat3Type, false},     ProvidedValue{"gEyePos", kFloat4Type, false},
    ProvidedValue{"gLightWorldDir", kFloat3Type, true},     ProvidedValue{"gLightAmbientColor", kFloat3Type, true},
    ProvidedValue{"gLightDiffuseColor", kFloat3Type, true}, ProvidedValue{"gLightSpecularColor", kFloat3Type, true},
};
inline constexpr unsigned kPassedValues = 4; ///< those outside illuminance

[[nodiscard]] constexpr bool isProvidedName(std::string_view name) noexcept
{
    for (const ProvidedValue& value : kProvidedValues)
        if (value.name == name)
            return true;
    return false;
}

/// What a light answers with.
inline constexpr std::array<std::string_view, 4> kLightOutputs{"outLightWorldDir", "outLightAmbientColor",
                                                               "outLightDiffuseColor", "outLightSpecularColor"};
/// What a material answers with.
inline constexpr std::string_view kMaterialOutput = "outRGBA";

} // namespace krFrontend
