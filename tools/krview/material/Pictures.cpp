#include "Pictures.h"

#include "PictureInput.h"

#include <krview/FileStamp.h>
#include <krview/picture/CubeFilter.h>
#include <krview/picture/CubeMap.h>
#include <krview/picture/Picture.h>
#include <krview/picture/PictureReaders.h>
#include <krview/scene/InputError.h>

#include <common/PrintedMessage.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <utility>

namespace
{

constexpr std::array<GLint, kWrapNames.size()> kWraps{GL_REPEAT, GL_MIRRORED_REPEAT, GL_CLAMP_TO_EDGE};

constexpr IHWTexture::TextureType kCube = IHWTexture::kTextureCubeMap;
constexpr TextureSettings kUnfiltered{.isMipmapped = false}; // what is seen is even enough

unsigned greatestSide(GLenum limit)
{
    GLint side = 0;
    glGetIntegerv(limit, &side);
    return static_cast<unsigned>(side);
}

std::string keyOf(const NamedValue& picture)
{
    std::string key = picture.name + '\n' + krTools::digitsOf(picture.normalScale);
    for (const std::string& file : filesOf(picture))
        key += '\n' + fileStamp(file);
    return key;
}

} // namespace

void Pictures::begin(const Scene& scene, Progress& progress, std::vector<std::string>& files)
{
    fProgress = &progress;
    fFiles = &files;
    fEncodes = scene.encodes;
    fEnvironment = scene.environment;
    fWanted = fEncodes ? "surroundings, coded" : "surroundings";
    if (fEnvironment)
    {
        noteFiles(fEnvironment->picture);
        for (const float number :
             {fEnvironment->turn, fEnvironment->intensity, fEnvironment->picture.isCoded.value_or(true) ? 1.0f : 0.0f})
            fWanted += '\n' + krTools::digitsOf(number);
        fWanted += '\n' + keyOf(fEnvironment->picture);
    }
    for (auto& [key, kept] : fTextures)
        kept.isUsed = false;
}

void Pictures::dropUnused()
{
    std::erase_if(fTextures, [](const auto& item) { return !item.second.isUsed; });
    if (fRead == fWanted)
        return;
    fRead.clear();
    fSurroundings = {};
    fLight.reset();
}

void Pictures::noteFiles(const NamedValue& picture)
{
    for (const std::string& file : filesOf(picture))
        if (std::find(fFiles->begin(), fFiles->end(), file) == fFiles->end())
            fFiles->push_back(file);
}

Ref<Texture> Pictures::kept(const std::string& key, const std::function<Ref<Texture>()>& make)
{
    const auto found = fTextures.find(key);
    if (found != fTextures.end())
    {
        found->second.isUsed = true;
        return found->second.texture;
    }
    Ref<Texture> texture = make();
    fTextures[key] = {texture, true};
    return texture;
}

Ref<Texture> Pictures::texture(const ProgramInput& input, const InputValue* value, float blur)
{
    const PictureInput picture = pictureInput(input, value, fEncodes);
    if (input.type == kSampler1DShadow || input.type == kSampler2DShadow)
        return kept(dataTypeName(input.type), [&] { return Texture::emptyShadowMap(picture.type); });
    const bool isCube = input.type == kSamplerCube;
    if (isCube && !value)
    {
        if (input.hints.environment == "irradiance")
            return irradiance();
        return mirrored(input.hints.environment == "mirror" ? blur : 0);
    }

    noteFiles(picture.picture);
    const Filter filter = picture.picture.filter.value_or(Filter::Mipmap);
    const TextureSettings settings{.wrap =
                                       kWraps[static_cast<std::size_t>(picture.picture.wrap.value_or(Wrap::Repeat))],
                                   .isSmooth = filter != Filter::Nearest,
                                   .isMipmapped = filter == Filter::Mipmap,
                                   .isCoded = picture.decodes};
    const std::string key = std::string(dataTypeName(input.type)) + ' ' + std::to_string(settings.wrap) + ' ' +
                            std::to_string(static_cast<int>(filter)) + (settings.isCoded ? " coded\n" : " plain\n") +
                            keyOf(picture.picture);
    return kept(key,
                [&]
                {
                    if (const std::vector<std::string> read = filesOf(picture.picture); !read.empty())
                        fProgress->report("reading " + std::filesystem::path(read.front()).filename().string(), -1);
                    try
                    {
                        const Ref<IPixelArray> pixels = pixelsOf(
                            picture, greatestSide(isCube ? GL_MAX_CUBE_MAP_TEXTURE_SIZE : GL_MAX_TEXTURE_SIZE));
                        return Texture::upload(picture.type, *pixels, settings);
                    }
                    catch (const PictureError& error)
                    {
                        throw InputError(value->origin, value->place + ": " + error.what());
                    }
                });
}

Background Pictures::background()
{
    if (!fEnvironment || !fEnvironment->isShown)
        return {};
    const Ref<Texture> texture = mirrored(fEnvironment->blur);
    return {texture, fIsLight && !fEncodes};
}

Ref<Texture> Pictures::irradiance()
{
    readSurroundings();
    return kept("irradiance\n" + fWanted, [&] { return Texture::upload(kCube, *irradianceOf(*fLight), kUnfiltered); });
}

Ref<Texture> Pictures::mirrored(float blur)
{
    readSurroundings();
    if (isSharp(blur))
        return fSurroundings;
    return kept("mirrored\n" + krTools::digitsOf(blur) + '\n' + fWanted,
                [&] { return Texture::upload(kCube, *mirroredOf(*fLight, blur), kUnfiltered); });
}

void Pictures::readSurroundings()
{
    if (fRead == fWanted)
        return;
    Surroundings read = builtInSurroundings();
    if (fEnvironment)
    {
        fProgress->report("reading the environment", -1);
        try
        {
            read = surroundingsOf(*fEnvironment, fEncodes);
        }
        catch (const PictureError& error)
        {
            throw InputError(fEnvironment->origin, std::string("environment: ") + error.what());
        }
        fProgress->report("filtering the environment", -1);
    }
    const Ref<PixelArrayCubeMap> light =
        isLight(*read.cube) ? read.cube : cubeOfCube(*read.cube, {.decodes = fEncodes});
    constexpr unsigned kMostSide = 256; // what is finer is not filtered
    fLight.emplace(*light, kMostSide);
    fIsLight = read.isLight;
    fSurroundings = Texture::upload(kCube, *read.cube, {.isCoded = fEncodes});
    fRead = fWanted;
}
