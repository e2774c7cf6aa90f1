#include <krender/pixels/krBufferFormat.h>

#include <krender/pixels/IHWTexture.h>

krBufferFormat::krBufferFormat(RasterFormat color, RasterFormat second, RasterFormat third, SamplingType sampling,
                               IHWTexture::TextureType textureType) noexcept
    : fColorRaster(color), fTextureType(textureType), fSecondRaster(second), fThirdRaster(third), fSampling(sampling)
{
}

bool krBufferFormat::lessCapableThan(const krBufferFormat& other) const noexcept
{
    return fColorRaster < other.fColorRaster || fSecondRaster < other.fSecondRaster ||
           fThirdRaster < other.fThirdRaster || fSampling < other.fSampling;
}

bool krBufferFormat::betterOrEqualThan(const krBufferFormat& other) const noexcept
{
    // Deliberate: this asks whether the other format suffices, the reverse of what the name says.
    return !other.lessCapableThan(*this);
}

bool krBufferFormat::operator==(const krBufferFormat& other) const noexcept
{
    return fColorRaster == other.fColorRaster && fTextureType == other.fTextureType &&
           fSecondRaster == other.fSecondRaster && fThirdRaster == other.fThirdRaster && fSampling == other.fSampling;
}
