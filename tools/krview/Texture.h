#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/IPixelArray.h>

#include <epoxy/gl.h>

/// The device copy of a pixel array.
class Texture : public IHWTexture
{
public:
    /// @param type    the kind of texture, which must match the kind of array
    /// @param pixels  in pictureFormat(); borrowed for the call
    [[nodiscard]] static Ref<Texture> upload(TextureType type, const IPixelArray& pixels);
    /// A depth map of the greatest depth, with which nothing lies in shadow.
    [[nodiscard]] static Ref<Texture> emptyShadowMap(TextureType type);
    ~Texture() override;

    bool bind() override;
    bool unbind() override;
    bool generateMipMaps() override;

private:
    explicit Texture(TextureType type);

    GLenum fTarget;
    GLuint fId = 0;
};
