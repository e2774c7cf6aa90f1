#include "krender/frontend/private/ProgramNames.h"

#include <krender/shadergen/Target.h>

#include <algorithm>
#include <array>

namespace krFrontend
{
namespace
{

/// The name without what makes a target keep whole families of names for itself: underscores at its begin, two in a row.
std::string plainStem(std::string_view name)
{
    std::string stem;
    for (const char c : name)
        if (c != '_' || (!stem.empty() && stem.back() != '_'))
            stem += c;
    return stem;
}

/// What the frame of a program declares or gives a meaning to, whatever the material.
constexpr std::array<std::string_view, 30> kFrameWords{
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
    "gWorldNormal",
    "gWorldPos",
    "gWorldTangent",
    "glstate",
    "main",
    "modelViewProj",
    "oNormal",
    "oTangent",
    "objToWorldMatrix",
    "objToWorldMatrix_invtrans",
    "outLightAmbientColor",
    "outLightDiffuseColor",
    "outLightSpecularColor",
    "outLightWorldDir",
    "outRGBA",
    "var_gWorldNormal",
    "var_gWorldTangent",
    "vert2frag",
};
static_assert(std::is_sorted(kFrameWords.begin(), kFrameWords.end()));
constexpr std::array<std::string_view, 4> kFramePrefixes{"_TEXCOORD", "gl_", "kr_", "var_"};

} // namespace

void ProgramNames::avoid(const NameTable& words)
{
    for (Name name = 0; name < words.size(); ++name)
        fWords.insert(words.text(name));
}

bool ProgramNames::isReserved(std::string_view name) const noexcept
{
    return fTarget.isReserved(name) || std::binary_search(kFrameWords.begin(), kFrameWords.end(), name) ||
           std::any_of(kFramePrefixes.begin(), kFramePrefixes.end(),
                       [name](std::string_view prefix) { return name.starts_with(prefix); });
}

std::string ProgramNames::claim(std::string_view name)
{
    if (needsOther(name) || isTaken(name))
        return invent(name);
    take(name);
    return std::string(name);
}

std::string ProgramNames::invent(std::string_view like)
{
    std::string_view rest = like.substr(0, kLongestProgramName);
    for (const std::string_view prefix : kFramePrefixes)
        if (rest.starts_with(prefix))
            rest.remove_prefix(prefix.size());
    while (rest.ends_with('_'))
        rest.remove_suffix(1);
    std::string stem(rest);
    if (fTarget.isReserved(stem + "_1"))
        stem = plainStem(stem);
    if (stem.empty() || (stem[0] >= '0' && stem[0] <= '9'))
        stem = "value";
    if (isReserved(stem + "_1"))
        stem.insert(0, "value_");
    for (unsigned& number = fNumbers[stem];;)
    {
        std::string name = stem + "_" + std::to_string(++number);
        if (isReserved(name) || isTaken(name) || fWords.contains(name))
            continue;
        take(name);
        return name;
    }
}

} // namespace krFrontend
