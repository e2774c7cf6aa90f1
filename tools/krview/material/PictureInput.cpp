#include "PictureInput.h"

#include <krview/picture/BuiltInPictures.h>
#include <krview/picture/CubeMap.h>
#include <krview/picture/NormalMap.h>
#include <krview/picture/Picture.h>
#include <krview/picture/PictureReaders.h>
#include <krview/scene/InputError.h>

#include <common/PrintedMessage.h>

#include <krender/frontend/NearNames.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <numbers>
#include <string_view>
#include <system_error>
#include <variant>

namespace
{

using krTools::inQuotes;

/// Parts of the names of inputs whose pictures hold other things than colours.
constexpr std::array<std::string_view, 13> kDataWords{"normal",  "height",    "bump",     "displace", "rough",
                                                      "gloss",   "metal",     "mask",     "noise",    "depth",
                                                      "opacity", "occlusion", "curvature"};

constexpr unsigned kCubeSide = 128; // of the built-in cube map

bool speaksOfData(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return std::any_of(kDataWords.begin(), kDataWords.end(),
                       [&](std::string_view word) { return name.find(word) != std::string::npos; });
}

std::string pathOf(const NamedValue& picture, const std::string& name)
{
    return (std::filesystem::path(picture.directory) / name).lexically_normal().string();
}

bool isBuiltIn(const std::string& name)
{
    const std::vector<std::string>& names = builtInPictureNames();
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Reads a file or makes a built-in picture.
/// @param builtIn  for messages
Ref<PixelArray2D> readNamed(const NamedValue& picture, const std::string& name, const std::vector<std::string>& builtIn)
{
    if (isBuiltIn(name))
        return builtInPicture(name);
    const std::string path = pathOf(picture, name);
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure))
        throw PictureError("there is no picture '" + path + "'" + krFrontend::didYouMean(name, builtIn));
    return readPicture(path);
}

std::vector<std::string> cubeNames()
{
    std::vector<std::string> names = builtInPictureNames();
    names.emplace_back(kSurroundingsName);
    return names;
}

Ref<PixelArrayCubeMap> readFaces(const NamedValue& picture, unsigned greatestSide)
{
    return cubeOfFaces([&](std::size_t face) { return readNamed(picture, picture.faces[face], cubeNames()); },
                       greatestSide);
}

bool isBuiltInCube(const NamedValue& picture)
{
    return picture.faces.empty() && (picture.name.empty() || picture.name == kSurroundingsName);
}

} // namespace

PictureInput pictureInput(const ProgramInput& input, const InputValue* value, bool encodes)
{
    const auto fail = [&](const std::string& text)
    {
        throw InputError(value->origin,
                         value->place + ": " + inQuotes(input.name) + " is of type " + dataTypeName(input.type) + text);
    };
    const auto* named = value ? std::get_if<NamedValue>(&value->value) : nullptr;
    const bool isCube = input.type == kSamplerCube;
    const bool takesPicture = isCube || input.type == kSampler2D;
    if (value && !takesPicture)
        fail(", and there is one picture for all of them");
    if (value && !named)
        fail(" and wants a picture");
    if (named && !isCube && !named->faces.empty())
        fail(" and wants one picture, not six");
    if (named && isCube && named->normalScale != 0)
        fail(", whose heights cannot be turned into normals");

    IHWTexture::TextureType type = IHWTexture::kTexture2D;
    if (isCube)
        type = IHWTexture::kTextureCubeMap;
    else if (input.type == kSampler1D || input.type == kSampler1DShadow)
        type = IHWTexture::kTexture1D;
    else if (input.type == kSampler3D)
        type = IHWTexture::kTexture3D;
    PictureInput picture{type, named ? *named : NamedValue(), false};
    // The name tells a normal map. Its default is made from a picture of heights.
    constexpr float kBuiltInScale = 12;
    const bool isNormalMap = input.name.find("ormal") != std::string::npos;
    if (!named && input.type == kSampler2D)
        picture.picture = NamedValue{isNormalMap ? "noise" : "checker", "", isNormalMap ? kBuiltInScale : 0};
    picture.decodes = encodes && takesPicture && picture.picture.normalScale == 0 &&
                      picture.picture.isCoded.value_or(input.hints.isCoded.value_or(!speaksOfData(input.name)));
    return picture;
}

std::vector<std::string> filesOf(const NamedValue& picture)
{
    std::vector<std::string> files;
    for (const std::string& face : picture.faces)
        if (!isBuiltIn(face))
            files.push_back(pathOf(picture, face));
    if (!picture.name.empty() && picture.name != kSurroundingsName && !isBuiltIn(picture.name))
        files.push_back(pathOf(picture, picture.name));
    return files;
}

Ref<IPixelArray> pixelsOf(const PictureInput& input, unsigned greatestSide)
{
    switch (input.type)
    {
    case IHWTexture::kTexture1D:
        return builtInRamp();
    case IHWTexture::kTexture3D:
        return builtInNoise();
    case IHWTexture::kTextureCubeMap:
        if (isBuiltInCube(input.picture))
            return surroundingsPicture(kCubeSide);
        if (!input.picture.faces.empty())
            return readFaces(input.picture, greatestSide);
        return cubeOfLatLong(*readNamed(input.picture, input.picture.name, cubeNames()), {.decodes = input.decodes});
    default:
        break;
    }
    Ref<PixelArray2D> pixels = readNamed(input.picture, input.picture.name, builtInPictureNames());
    fitInto(*pixels, greatestSide);
    return input.picture.normalScale != 0 ? normalMap(*pixels, input.picture.normalScale) : pixels;
}

Surroundings builtInSurroundings() { return {surroundingsPicture(kCubeSide), false}; }

Surroundings surroundingsOf(const Environment& environment, bool encodes)
{
    constexpr unsigned kBackgroundSide = 512; // of the built-in ones
    constexpr unsigned kMostSide = 1024;
    const NamedValue& picture = environment.picture;
    const Setting setting{.turn = environment.turn * std::numbers::pi_v<float> / 180,
                          .intensity = environment.intensity,
                          .decodes = encodes && picture.isCoded.value_or(true)};
    const auto result = [&](const Ref<PixelArrayCubeMap>& cube, bool isHdr) {
        return Surroundings{cube, isHdr || setting.decodes || !picture.isCoded.value_or(true)};
    };
    if (picture.faces.empty() && !isBuiltInCube(picture))
    {
        const Ref<PixelArray2D> latLong = readNamed(picture, picture.name, cubeNames());
        return result(cubeOfLatLong(*latLong, setting), isLight(*latLong));
    }
    const Ref<PixelArrayCubeMap> cube =
        isBuiltInCube(picture) ? surroundingsPicture(kBackgroundSide) : readFaces(picture, kMostSide);
    return result(cubeOfCube(*cube, setting), isLight(*cube));
}
