#include <krender/pixels/krSysPixelFormat.h>

#include "krender/pixels/private/PixelStorage.h"

#include <cstddef>
#include <cstdlib>
#include <optional>

krSysPixelFormat::krSysPixelFormat(std::int32_t bytesPerPixel, std::int32_t pixelType,
                                   std::int32_t componentCode) noexcept
    : fBytesPerPixel(bytesPerPixel), fPixelType(pixelType), fComponentCode(componentCode)
{
}

krSysPixelFormat::~krSysPixelFormat() = default;

void krSysPixelFormat::deallocate(void* pixels) { std::free(pixels); }

void krSysPixelFormat::deallocate(void* pixels) const { const_cast<krSysPixelFormat*>(this)->deallocate(pixels); }

void* krSysPixelFormat::allocate(unsigned w, unsigned h, unsigned d) const
{
    const auto bytes = krPixels::storageSize({w, h, d, static_cast<std::size_t>(fBytesPerPixel)});
    return bytes ? std::malloc(*bytes) : nullptr;
}
