#include "Texture.h"

#include "GlFeatures.h"

#include <krview/picture/Picture.h>

#include <common/PrintedMessage.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <vector>

namespace
{

constexpr std::array<GLenum, 5> kTargets{GLenum{0}, GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP};

constexpr float kGreatestHalf = 65504;

/// How pixels go to the driver.
struct Transfer
{
    GLint stored;
    GLenum component;
    std::size_t pixelBytes;
};

Transfer transferOf(const IPixelArray& pixels, bool isCoded)
{
    if (!isLight(pixels))
        return {isCoded ? GL_SRGB8_ALPHA8 : GL_RGBA8, GL_UNSIGNED_BYTE, 4};
    constexpr std::size_t kBytes = 4 * sizeof(GLfloat);
    if (hasFloatTextures())
        return {GL_RGBA16F, GL_FLOAT, kBytes};
    static const bool kIsNoted = []
    {
        krTools::printNote("krview", "the driver has no textures of floats: bright light is cut off at 1");
        return true;
    }();
    (void)kIsNoted;
    return {GL_RGBA8, GL_FLOAT, kBytes};
}

/// The pixels, with none beyond what a half holds: an infinite one would spread over all around it.
/// @param room  holds them where they are not the array's own
const std::byte* withinHalves(const IPixelArray& pixels, std::vector<float>& room)
{
    const auto* const own = static_cast<const std::byte*>(pixels.data());
    if (!isLight(pixels))
        return own;
    const auto* const floats = static_cast<const float*>(pixels.data());
    const std::size_t count = std::size_t{4} * pixels.width() * pixels.height() * pixels.depth();
    if (std::all_of(floats, floats + count, [](float f) { return f <= kGreatestHalf; }))
        return own;
    room.resize(count);
    std::transform(floats, floats + count, room.begin(), [](float f) { return std::min(f, kGreatestHalf); });
    return reinterpret_cast<const std::byte*>(room.data());
}

} // namespace

Texture::Texture(TextureType type, const TextureSettings& settings) : fTarget(kTargets[static_cast<std::size_t>(type)])
{
    glGenTextures(1, &fId);
    Texture::bind();
    const GLint wrap = type == kTextureCubeMap ? GL_CLAMP_TO_EDGE : settings.wrap;
    for (const GLenum axis : std::initializer_list<GLenum>{GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glTexParameteri(fTarget, axis, wrap);
    for (const GLenum filter : std::initializer_list<GLenum>{GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(fTarget, filter, settings.isSmooth ? GL_LINEAR : GL_NEAREST);
}

Texture::~Texture() { glDeleteTextures(1, &fId); }

Ref<Texture> Texture::upload(TextureType type, const IPixelArray& pixels, const TextureSettings& settings)
{
    Ref<Texture> texture(new Texture(type, settings));
    const auto width = static_cast<GLsizei>(pixels.width());
    const auto height = static_cast<GLsizei>(pixels.height());
    const auto depth = static_cast<GLsizei>(pixels.depth());
    const auto [stored, component, pixelBytes] = transferOf(pixels, settings.isCoded);
    std::vector<float> room;
    const std::byte* const bytes = withinHalves(pixels, room);
    const std::size_t face = pixelBytes * pixels.width() * pixels.height();
    switch (type)
    {
    case kNoTexture:
        break;
    case kTexture1D:
        glTexImage1D(GL_TEXTURE_1D, 0, stored, width, 0, GL_RGBA, component, bytes);
        break;
    case kTexture2D:
        glTexImage2D(GL_TEXTURE_2D, 0, stored, width, height, 0, GL_RGBA, component, bytes);
        break;
    case kTexture3D:
        glTexImage3D(GL_TEXTURE_3D, 0, stored, width, height, depth, 0, GL_RGBA, component, bytes);
        break;
    case kTextureCubeMap:
        if (hasSeamlessCubes())
            glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS);
        for (GLenum i = 0; i < 6; ++i)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + i, 0, stored, width, height, 0, GL_RGBA, component,
                         bytes + face * i);
        break;
    }
    if (settings.isMipmapped)
        texture->generateMipMaps();
    return texture;
}

Ref<Texture> Texture::emptyShadowMap(TextureType type)
{
    Ref<Texture> texture(new Texture(type, {}));
    constexpr GLfloat kFarthest = 1;
    if (type == kTexture1D)
        glTexImage1D(GL_TEXTURE_1D, 0, GL_DEPTH_COMPONENT, 1, 0, GL_DEPTH_COMPONENT, GL_FLOAT, &kFarthest);
    else
        glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT, 1, 1, 0, GL_DEPTH_COMPONENT, GL_FLOAT, &kFarthest);
    glTexParameteri(texture->fTarget, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_R_TO_TEXTURE);
    glTexParameteri(texture->fTarget, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    return texture;
}

bool Texture::bind()
{
    glBindTexture(fTarget, fId);
    return true;
}

bool Texture::unbind()
{
    glBindTexture(fTarget, 0);
    return true;
}

bool Texture::generateMipMaps()
{
    if (!hasFramebufferObjects())
        return false;
    bind();
    glGenerateMipmap(fTarget);
    glTexParameteri(fTarget, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    fMipmapped = true;
    return true;
}
