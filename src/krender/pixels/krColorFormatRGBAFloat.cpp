#include <krender/pixels/krColorFormatRGBAFloat.h>

#include "krender/pixels/private/FixedFloat.h"
#include "krender/pixels/private/NormalMap.h"
#include "krender/pixels/private/PixelStorage.h"
#include "krender/pixels/private/Resize.h"

#include <krender/pixels/krColorFormat.h>

#include <algorithm>
#include <cstdlib>

krColorFormatRGBAFloat::krColorFormatRGBAFloat() noexcept : krColorFormatRGBAFloat(14) {}

krColorFormatRGBAFloat::krColorFormatRGBAFloat(std::int32_t pixelType) noexcept : krColorFormat(16, pixelType, 4) {}

krColorFormatRGBAFloat::~krColorFormatRGBAFloat() = default;

void krColorFormatRGBAFloat::deallocate(void* pixels) { std::free(pixels); }

void* krColorFormatRGBAFloat::allocate(unsigned w, unsigned h, unsigned d)
{
    return krPixels::allocateRGBA(sizeof(float), w, h, d);
}

void krColorFormatRGBAFloat::setDefaultValue(const float* rgba) noexcept
{
    std::copy_n(rgba, 4, fDefaultValue.begin());
}

void krColorFormatRGBAFloat::defaultValue(float* rgba) const noexcept
{
    std::copy(fDefaultValue.begin(), fDefaultValue.end(), rgba);
}

float* krColorFormatRGBAFloat::convertFromFixed8(const unsigned char* src, unsigned w, unsigned h, unsigned d) const
{
    return krPixels::converted<float>(*this, src, w, h, d);
}

bool krColorFormatRGBAFloat::convertToNormalMap(float* data, unsigned w, unsigned h, float scale) const
{
    krPixels::convertToNormalMap(data, w, h, scale);
    return false; // deliberate: it says nothing about success
}

float* krColorFormatRGBAFloat::resize(const float* src, unsigned srcW, unsigned srcH, unsigned dstW,
                                      unsigned dstH) const
{
    return krPixels::resized(*this, src, srcW, srcH, dstW, dstH);
}
