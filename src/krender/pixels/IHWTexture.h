#pragma once
#include <krender/Export.h>
#include <krender/pixels/IBuffer.h>

#include <array>
#include <cstdint>

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

    /// Makes it the current texture.
    /// @return  success; false here
    virtual bool bind();
    /// Ends what bind began.
    /// @return  success; false here
    virtual bool unbind();
    /// Makes the smaller levels.
    /// @return  success; false here
    virtual bool generateMipMaps();
    /// Stores the importance; the host says what it means.
    /// @param importance  0 until set
    virtual void setImportance(unsigned importance);

    [[nodiscard]] unsigned importance() const noexcept { return fImportance; }
    [[nodiscard]] bool mipmapped() const noexcept { return fMipmapped; }

protected:
    unsigned fImportance = 0;
    bool fMipmapped = false;
    /// For the host; initially 0.
    std::array<unsigned char, 16> fHostBytes{};
};
