#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/IPixelArray.h>

#include <epoxy/gl.h>

/// How a texture is read.
struct TextureSettings
{
    GLint wrap = GL_REPEAT;
    bool isSmooth = true;    ///< whether it is read between its pixels
    bool isMipmapped = true; ///< whether it has smaller copies for where it is seen from afar, if the driver makes them
    bool isCoded = false;    ///< whether its pixels are coded as sRGB and decoded where they are read; not of floats
};

/// The device copy of a pixel array.
class Texture : public IHWTexture
{
public:
    /// @param type    the kind of texture, which must match the kind of array
    /// @param pixels  in pictureFormat(), or in lightFormat(), where what a half cannot hold becomes the greatest half;
    ///                drivers without textures of floats get those clamped to 1, with a note for the user. Borrowed for
    ///                the call
    [[nodiscard]] static Ref<Texture> upload(TextureType type, const IPixelArray& pixels,
                                             const TextureSettings& settings = {});
    /// A depth map of the greatest depth, with which nothing lies in shadow.
    [[nodiscard]] static Ref<Texture> emptyShadowMap(TextureType type);
    ~Texture() override;

    bool bind() override;
    bool unbind() override;
    bool generateMipMaps() override;

private:
    Texture(TextureType type, const TextureSettings& settings);

    GLenum fTarget;
    GLuint fId = 0;
};
