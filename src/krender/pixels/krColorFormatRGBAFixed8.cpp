#include <krender/pixels/krColorFormatRGBAFixed8.h>

#include "krender/pixels/private/FixedFloat.h"
#include "krender/pixels/private/NormalMap.h"
#include "krender/pixels/private/PixelStorage.h"
#include "krender/pixels/private/Resize.h"

#include <krender/pixels/krColorFormat.h>

#include <algorithm>
#include <cstdlib>

krColorFormatRGBAFixed8::krColorFormatRGBAFixed8() noexcept : krColorFormatRGBAFixed8(14) {}

krColorFormatRGBAFixed8::krColorFormatRGBAFixed8(std::int32_t pixelType) noexcept : krColorFormat(4, pixelType, 2) {}

krColorFormatRGBAFixed8::~krColorFormatRGBAFixed8() = default;

void krColorFormatRGBAFixed8::deallocate(void* pixels) { std::free(pixels); }

void* krColorFormatRGBAFixed8::allocate(unsigned w, unsigned h, unsigned d)
{
    return krPixels::allocateRGBA(sizeof(unsigned char), w, h, d);
}

void krColorFormatRGBAFixed8::setDefaultValue(const unsigned char* rgba) noexcept
{
    std::copy_n(rgba, 4, fDefaultValue.begin());
}

void krColorFormatRGBAFixed8::defaultValue(unsigned char* rgba) const noexcept
{
    std::copy(fDefaultValue.begin(), fDefaultValue.end(), rgba);
}

unsigned char* krColorFormatRGBAFixed8::convertFromFloat(const float* src, unsigned w, unsigned h, unsigned d) const
{
    return krPixels::converted<unsigned char>(*this, src, w, h, d);
}

bool krColorFormatRGBAFixed8::convertToNormalMap(unsigned char* data, unsigned w, unsigned h, float scale) const
{
    krPixels::convertToNormalMap(data, w, h, scale);
    return false; // deliberate: it says nothing about success
}

unsigned char* krColorFormatRGBAFixed8::resize(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned dstW,
                                               unsigned dstH) const
{
    return krPixels::resized(*this, src, srcW, srcH, dstW, dstH);
}
