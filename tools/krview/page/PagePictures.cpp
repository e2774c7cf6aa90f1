#include "PagePictures.h"

#include <krview/picture/CubeFilter.h>
#include <krview/picture/CubeMap.h>
#include <krview/picture/Picture.h>
#include <krview/picture/PictureReaders.h>
#include <krview/picture/PngWriter.h>
#include <krview/scene/InputError.h>

#include <common/Source.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string_view>

using nlohmann::ordered_json;

namespace
{

/// What every browser takes.
constexpr unsigned kGreatestPageSide = 4096;
constexpr unsigned kGreatestCubeSide = 512;

constexpr std::array kTargets{"", "TEXTURE_2D", "TEXTURE_2D", "TEXTURE_3D", "TEXTURE_CUBE_MAP"};
constexpr std::array<const char*, kWrapNames.size()> kWraps{"REPEAT", "MIRRORED_REPEAT", "CLAMP_TO_EDGE"};
constexpr std::array<const char*, kFilterNames.size()> kFilters{"NEAREST", "LINEAR", "LINEAR_MIPMAP_LINEAR"};
constexpr std::array kFaceNames{"TEXTURE_CUBE_MAP_POSITIVE_X", "TEXTURE_CUBE_MAP_NEGATIVE_X",
                                "TEXTURE_CUBE_MAP_POSITIVE_Y", "TEXTURE_CUBE_MAP_NEGATIVE_Y",
                                "TEXTURE_CUBE_MAP_POSITIVE_Z", "TEXTURE_CUBE_MAP_NEGATIVE_Z"};

ordered_json newPicture(const char* target, Wrap wrap, Filter filter)
{
    const char* const wrapName = kWraps[static_cast<std::size_t>(wrap)];
    return {{"target", target},
            {"settings",
             {{"TEXTURE_WRAP_S", wrapName},
              {"TEXTURE_WRAP_T", wrapName},
              {"TEXTURE_WRAP_R", wrapName},
              {"TEXTURE_MIN_FILTER", kFilters[static_cast<std::size_t>(filter)]},
              {"TEXTURE_MAG_FILTER", filter == Filter::Nearest ? "NEAREST" : "LINEAR"}}},
            {"isMipmapped", filter == Filter::Mipmap},
            {"format", "RGBA8"},
            {"files", ordered_json::array()},
            {"layers", ordered_json::array()},
            {"depths", 0}};
}

/// A pixel of light in 32 bits: nine for each colour and five for their exponent. The lowest byte first.
std::uint32_t sharedExponent(const float* light)
{
    constexpr int kBias = 15;
    constexpr int kBits = 9;
    constexpr float kGreatest = 65408;
    std::array<float, 3> parts{};
    for (std::size_t i = 0; i < parts.size(); ++i)
        parts[i] = light[i] > 0 ? std::min(light[i], kGreatest) : 0;
    const float most = std::max({parts[0], parts[1], parts[2]});
    int exponent = most > 0 ? std::max(-kBias - 1, std::ilogb(most)) + 1 + kBias : 0;
    if (std::lround(std::ldexp(most, kBits + kBias - exponent)) == 1 << kBits)
        ++exponent;
    std::uint32_t bits = static_cast<std::uint32_t>(exponent) << 27;
    for (std::size_t i = 0; i < parts.size(); ++i)
        bits |= static_cast<std::uint32_t>(std::lround(std::ldexp(parts[i], kBits + kBias - exponent))) << (kBits * i);
    return bits;
}

/// Half as many pixels in each direction, each the mean of those that it stands for.
std::vector<float> halved(const std::vector<float>& pixels, unsigned& width, unsigned& height)
{
    const unsigned newWidth = std::max(width / 2, 1U);
    const unsigned newHeight = std::max(height / 2, 1U);
    std::vector<float> half;
    half.reserve(std::size_t{4} * newWidth * newHeight);
    for (unsigned y = 0; y < newHeight; ++y)
        for (unsigned x = 0; x < newWidth; ++x)
            for (std::size_t part = 0; part < 4; ++part)
            {
                const auto at = [&](unsigned column, unsigned row) {
                    return pixels[4 * (std::size_t{width} * std::min(row, height - 1) + std::min(column, width - 1)) +
                                  part];
                };
                half.push_back(
                    (at(2 * x, 2 * y) + at(2 * x + 1, 2 * y) + at(2 * x, 2 * y + 1) + at(2 * x + 1, 2 * y + 1)) / 4);
            }
    width = newWidth;
    height = newHeight;
    return half;
}

/// Light of at most 1 as codes of sRGB.
std::vector<unsigned char> codesOf(const std::vector<float>& light)
{
    std::vector<unsigned char> codes;
    codes.reserve(light.size());
    for (std::size_t i = 0; i < light.size(); ++i)
    {
        const float part = std::clamp(light[i], 0.0f, 1.0f);
        const float code = part < 0.0031308f ? 12.92f * part : 1.055f * std::pow(part, 1 / 2.4f) - 0.055f;
        codes.push_back(static_cast<unsigned char>(std::lround(255 * (i % 4 == 3 ? 1 : code))));
    }
    return codes;
}

} // namespace

std::size_t PagePictures::put(Json picture)
{
    const auto known = std::find(fAll.begin(), fAll.end(), picture);
    if (known != fAll.end())
        return static_cast<std::size_t>(known - fAll.begin());
    fAll.push_back(std::move(picture));
    return fAll.size() - 1;
}

std::size_t PagePictures::addDepths(const PageShadow* shadow)
{
    Json picture = newPicture("TEXTURE_2D", Wrap::Clamp, Filter::Linear);
    picture["settings"]["TEXTURE_COMPARE_MODE"] = "COMPARE_REF_TO_TEXTURE";
    picture["format"] = "DEPTH_COMPONENT24";
    picture["depths"] = shadow ? shadow->size : 1;
    return put(std::move(picture));
}

std::size_t PagePictures::add(const ProgramInput& input, const InputValue* value, float blur, const PageShadow* shadow)
{
    const PictureInput picture = pictureInput(input, value, fScene.encodes);
    if (input.type == kSampler2DShadow)
        return addDepths(shadow && shadow->light == input.light ? shadow : nullptr);
    if (input.type == kSamplerCube && !value)
        return addSurroundings(input.hints.environment, blur);
    try
    {
        return addFile(picture);
    }
    catch (const PictureError& error)
    {
        throw InputError(value->origin, value->place + ": " + error.what());
    }
}

std::size_t PagePictures::addFile(const PictureInput& input)
{
    const Ref<IPixelArray> pixels =
        pixelsOf(input, input.type == IHWTexture::kTextureCubeMap ? kGreatestCubeSide : kGreatestPageSide);
    const bool isCube = input.type == IHWTexture::kTextureCubeMap;
    Json picture = newPicture(kTargets[static_cast<std::size_t>(input.type)],
                              isCube ? Wrap::Clamp : input.picture.wrap.value_or(Wrap::Repeat),
                              input.picture.filter.value_or(Filter::Mipmap));
    const std::vector<std::string> files = filesOf(input.picture);
    if (input.type == IHWTexture::kTexture3D)
    {
        const std::size_t size = std::size_t{4} * pixels->width() * pixels->height() * pixels->depth();
        const Json place = fBytes.addBytes({static_cast<const char*>(pixels->data()), size});
        picture["layers"].push_back({{"face", "TEXTURE_3D"},
                                     {"level", 0},
                                     {"format", "RGBA8"},
                                     {"size", {pixels->width(), pixels->height(), pixels->depth()}},
                                     {"layout", "RGBA"},
                                     {"type", "UNSIGNED_BYTE"},
                                     {"at", place[0]}});
        return put(std::move(picture));
    }
    // A file that nothing was made of stands in the page as it is.
    const bool isWhole = !isCube && !files.empty() && input.picture.normalScale == 0 && !isLight(*pixels) &&
                         std::max(pixels->width(), pixels->height()) < kGreatestPageSide;
    if (!isWhole)
        addFaces(picture, *pixels, input.decodes);
    else
    {
        picture["files"].push_back(fBytes.addBytes(krTools::readText(files.front(), kMostPictureBytes)));
        picture["format"] = input.decodes ? "SRGB8_ALPHA8" : "RGBA8";
    }
    return put(std::move(picture));
}

void PagePictures::addFaces(Json& picture, const IPixelArray& pixels, bool isCoded)
{
    const bool isCube = picture["target"] == "TEXTURE_CUBE_MAP";
    const std::size_t faces = isCube ? kFaceNames.size() : 1;
    const std::size_t face = std::size_t{4} * pixels.width() * pixels.height();
    if (!isLight(pixels))
    {
        const auto* const bytes = static_cast<const unsigned char*>(pixels.data());
        for (std::size_t i = 0; i < faces; ++i)
            addCodes(picture, bytes + i * face, pixels.width(), pixels.height());
        picture["format"] = isCoded ? "SRGB8_ALPHA8" : "RGBA8";
        return;
    }
    const auto* const floats = static_cast<const float*>(pixels.data());
    const bool isDim = std::all_of(floats, floats + faces * face, [](float part) { return part >= 0 && part <= 1; });
    picture["format"] = isDim || fScene.encodes ? "SRGB8_ALPHA8" : "RGBA8";
    for (std::size_t i = 0; i < faces; ++i)
    {
        unsigned width = pixels.width();
        unsigned height = pixels.height();
        std::vector<float> light(floats + i * face, floats + (i + 1) * face);
        while (isCube && width > kGreatestCubeSide)
            light = halved(light, width, height);
        if (isDim)
            addCodes(picture, codesOf(light).data(), width, height);
        else
            addLight(picture, isCube ? kFaceNames[i] : "TEXTURE_2D", std::move(light), width, height);
    }
}

void PagePictures::addCodes(Json& picture, const unsigned char* codes, unsigned width, unsigned height)
{
    bool hasAlpha = false;
    for (std::size_t i = 3; i < std::size_t{4} * width * height; i += 4)
        hasAlpha = hasAlpha || codes[i] != 255;
    picture["files"].push_back(fBytes.addBytes(encodePng(codes, width, height, hasAlpha)));
}

void PagePictures::addLight(Json& picture, const char* face, std::vector<float> level, unsigned width, unsigned height)
{
    // Browsers make no smaller copies of this format.
    for (unsigned number = 0;; ++number)
    {
        std::string bytes;
        for (std::size_t i = 0; i < level.size(); i += 4)
            appendLittle(bytes, sharedExponent(&level[i]), 4);
        picture["layers"].push_back({{"face", face},
                                     {"level", number},
                                     {"format", "RGB9_E5"},
                                     {"size", {width, height}},
                                     {"layout", "RGB"},
                                     {"type", "UNSIGNED_INT_5_9_9_9_REV"},
                                     {"at", fBytes.addBytes(bytes)[0]}});
        if (!picture["isMipmapped"] || (width == 1 && height == 1))
            return;
        level = halved(level, width, height);
    }
}

std::size_t PagePictures::addCube(const PixelArrayCubeMap& cube, bool isCoded, Filter filter)
{
    Json picture = newPicture("TEXTURE_CUBE_MAP", Wrap::Clamp, filter);
    addFaces(picture, cube, isCoded);
    return put(std::move(picture));
}

void PagePictures::readSurroundings()
{
    if (fSurroundings)
        return;
    try
    {
        fSurroundings =
            fScene.environment ? surroundingsOf(*fScene.environment, fScene.encodes) : builtInSurroundings();
    }
    catch (const PictureError& error)
    {
        throw InputError(fScene.environment->origin, std::string("environment: ") + error.what());
    }
    const Ref<PixelArrayCubeMap> light = isLight(*fSurroundings->cube)
                                             ? fSurroundings->cube
                                             : cubeOfCube(*fSurroundings->cube, {.decodes = fScene.encodes});
    constexpr unsigned kMostSide = 256; // what is finer is not filtered
    fLight.emplace(*light, kMostSide);
}

std::size_t PagePictures::addSurroundings(const std::string& kind, float blur)
{
    readSurroundings();
    // What is filtered is even enough without smaller copies, as in the window.
    if (kind == "irradiance")
        return addCube(*irradianceOf(*fLight), false, Filter::Linear);
    if (kind != "mirror" || isSharp(blur))
        return addCube(*fSurroundings->cube, fScene.encodes, Filter::Mipmap);
    return addCube(*mirroredOf(*fLight, blur), false, Filter::Linear);
}

std::optional<std::pair<std::size_t, bool>> PagePictures::addBackground()
{
    if (!fScene.environment || !fScene.environment->isShown)
        return std::nullopt;
    const std::size_t picture = addSurroundings("mirror", fScene.environment->blur);
    return std::pair(picture, fSurroundings->isLight && !fScene.encodes);
}
