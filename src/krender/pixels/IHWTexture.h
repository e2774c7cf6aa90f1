#pragma once
#include <krender/pixels/IBuffer.h>

#include <array>

/// A texture on the device. The host's textures override what touches the device.
class KRENDER_EXPORT IHWTexture : public IBuffer
{
public:
    enum TextureType : std::int32_t
    {
        kNoTexture = 0,
        kTexture1D = 1,
        kTexture2D = 2,
        kTexture3D = 3,
        kTextureCubeMap = 4,
    };

    IHWTexture() noexcept = default;
    ~IHWTexture() override;

    /// Makes it the current texture; false here.
    virtual bool bind();
    virtual bool unbind();
    /// Makes the smaller levels; false here.
    virtual bool generateMipMaps();
    /// @param importance  how hard the host should try to keep the texture on the device; stored
    virtual void setImportance(unsigned importance);

    [[nodiscard]] unsigned importance() const noexcept { return fImportance; }
    [[nodiscard]] bool mipmapped() const noexcept { return fMipmapped; }

protected:
    unsigned fImportance = 0;
    bool fMipmapped = false;
    /// For the host; zero until it writes to them.
    std::array<unsigned char, 16> fHostBytes{};
};
