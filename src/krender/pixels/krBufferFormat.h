#pragma once
#include <krender/Export.h>
#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/IPixelFormat.h>

#include <cstdint>

/// The capabilities of a drawing buffer: its three rasters, its sampling, and the kind of texture that it can be bound as.
class KRENDER_EXPORT krBufferFormat : public IPixelFormat
{
public:
    /// How a raster stores a component, in order of capability.
    enum RasterFormat : std::int32_t
    {
        kNoRaster = 0,
        kFixed8 = 1,
        kFixed16 = 2,
        kFixed24 = 3,
        kFloat16 = 4,
        kFloat32 = 5,
    };

    /// Samples per pixel, in order of capability.
    enum SamplingType : std::int32_t
    {
        kSingleSample = 0,
        kMultisample2 = 1,
        kMultisample4 = 2,
        kMultisample8 = 3,
        kMultisample16 = 4,
    };

    krBufferFormat(RasterFormat color, RasterFormat second, RasterFormat third, SamplingType sampling,
                   IHWTexture::TextureType textureType) noexcept;

    [[nodiscard]] RasterFormat colorRaster() const noexcept { return fColorRaster; }
    [[nodiscard]] IHWTexture::TextureType textureType() const noexcept { return fTextureType; }
    [[nodiscard]] RasterFormat secondRaster() const noexcept { return fSecondRaster; }
    [[nodiscard]] RasterFormat thirdRaster() const noexcept { return fThirdRaster; }
    [[nodiscard]] SamplingType sampling() const noexcept { return fSampling; }

    /// True when a raster or the sampling is less than the other's. The texture type does not count: formats that differ
    /// in nothing else are unequal, yet neither is less capable.
    [[nodiscard]] bool lessCapableThan(const krBufferFormat& other) const noexcept;
    /// True unless the other is less capable than this one, which is the reverse of what the name says. When each is less
    /// capable in some field, the answer is false both ways.
    [[nodiscard]] bool betterOrEqualThan(const krBufferFormat& other) const noexcept;
    /// True when all five fields are equal.
    [[nodiscard]] bool operator==(const krBufferFormat& other) const noexcept;

private:
    RasterFormat fColorRaster;
    IHWTexture::TextureType fTextureType;
    RasterFormat fSecondRaster;
    RasterFormat fThirdRaster;
    SamplingType fSampling;
};
