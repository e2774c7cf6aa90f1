#include <krender/pixels/krBufferFormat.h>

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
    // Asks whether the other one suffices; the hosts pass what they have as the argument, so the direction stays.
    return !other.lessCapableThan(*this);
}

bool krBufferFormat::operator==(const krBufferFormat& other) const noexcept
{
    return fColorRaster == other.fColorRaster && fTextureType == other.fTextureType &&
           fSecondRaster == other.fSecondRaster && fThirdRaster == other.fThirdRaster && fSampling == other.fSampling;
}
