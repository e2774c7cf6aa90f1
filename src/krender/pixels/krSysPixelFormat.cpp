#include <krender/pixels/krSysPixelFormat.h>

#include "krender/pixels/private/PixelStorage.h"

#include <cstdlib>

krSysPixelFormat::krSysPixelFormat(std::int32_t bytesPerPixel, std::int32_t pixelType,
                                   std::int32_t componentCode) noexcept
    : fBytesPerPixel(bytesPerPixel), fPixelType(pixelType), fComponentCode(componentCode)
{
}

krSysPixelFormat::~krSysPixelFormat() = default;

void krSysPixelFormat::deallocate(void* pixels) const { std::free(pixels); }

void* krSysPixelFormat::allocate(unsigned w, unsigned h, unsigned d) const
{
    const auto bytes = krPixels::product32({w, h, d, static_cast<std::uint32_t>(fBytesPerPixel)});
    return bytes ? std::malloc(*bytes) : nullptr;
}
