#include <krender/pixels/IPixelArray.h>

#include "krender/pixels/private/PixelStorage.h"

#include <krender/pixels/krSysPixelFormat.h>

#include <cstring>
#include <optional>

IPixelArray::IPixelArray(const krSysPixelFormat& format, unsigned w, unsigned h, unsigned d) : fFormat(&format)
{
    if (w == 0 || h == 0 || d == 0)
        return;
    fData = format.allocate(w, h, d);
    fWidth = w;
    fHeight = h;
    fDepth = d;
    fOwnsData = true;
}

IPixelArray::~IPixelArray() { release(); }

void IPixelArray::copy(const void* src, unsigned pixelSize) noexcept
{
    const auto bytes = krPixels::storageSize({pixelSize, fWidth, fHeight, fDepth});
    if (fData && bytes)
        std::memcpy(fData, src, *bytes);
}

void IPixelArray::release() noexcept
{
    if (fData && fFormat)
        fFormat->deallocate(fData);
    fData = nullptr;
    fOwnsData = false;
}
