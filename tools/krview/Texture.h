#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/IPixelArray.h>

#include <epoxy/gl.h>

/// A pixel array's copy in the graphics card.
class Texture : public IHWTexture
{
public:
    /// @param type    how the pixels are laid out
    /// @param pixels  in pictureFormat(); borrowed for the call
    [[nodiscard]] static Ref<Texture> upload(TextureType type, const IPixelArray& pixels);
    /// A depth map without anything in it, through which every place is lit.
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
