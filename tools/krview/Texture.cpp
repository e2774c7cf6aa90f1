#include "Texture.h"

#include "GlFeatures.h"

#include <array>
#include <cstddef>
#include <initializer_list>

namespace
{

constexpr std::array<GLenum, 5> kTargets{GLenum{0}, GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP};

} // namespace

Texture::Texture(TextureType type) : fTarget(kTargets[static_cast<std::size_t>(type)])
{
    glGenTextures(1, &fId);
    Texture::bind();
    const GLint wrap = type == kTextureCubeMap ? GL_CLAMP_TO_EDGE : GL_REPEAT;
    for (const GLenum axis : std::initializer_list<GLenum>{GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glTexParameteri(fTarget, axis, wrap);
    glTexParameteri(fTarget, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(fTarget, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

Texture::~Texture() { glDeleteTextures(1, &fId); }

Ref<Texture> Texture::upload(TextureType type, const IPixelArray& pixels)
{
    Ref<Texture> texture(new Texture(type));
    const auto width = static_cast<GLsizei>(pixels.width());
    const auto height = static_cast<GLsizei>(pixels.height());
    const auto depth = static_cast<GLsizei>(pixels.depth());
    const auto* bytes = static_cast<const GLubyte*>(pixels.data());
    const std::size_t face = std::size_t{4} * pixels.width() * pixels.height();
    switch (type)
    {
    case kNoTexture:
        break;
    case kTexture1D:
        glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, width, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes);
        break;
    case kTexture2D:
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes);
        break;
    case kTexture3D:
        glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, width, height, depth, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes);
        break;
    case kTextureCubeMap:
        for (GLenum i = 0; i < 6; ++i)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + i, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         bytes + face * i);
        break;
    }
    texture->generateMipMaps();
    return texture;
}

Ref<Texture> Texture::emptyShadowMap(TextureType type)
{
    Ref<Texture> texture(new Texture(type));
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
