#include <krender/pixels/IPixelArray.h>

#include <cstddef>
#include <cstring>

IPixelArray::IPixelArray(const krSysPixelFormat& format, unsigned w, unsigned h, unsigned d) : fFormat(&format)
{
    if (w == 0 || h == 0 || d == 0)
        return;
    fData = format.allocate(w, h, d);
    if (fData == nullptr)
        return;
    fWidth = w;
    fHeight = h;
    fDepth = d;
    fOwnsData = true;
}

IPixelArray::~IPixelArray() { release(); }

void IPixelArray::copy(const void* src, unsigned pixelSize) noexcept
{
    const std::size_t bytes = std::size_t{pixelSize} * fWidth * fHeight * fDepth;
    if (bytes != 0)
        std::memcpy(fData, src, bytes);
}

void IPixelArray::release() noexcept
{
    if (fData != nullptr && fFormat != nullptr)
        fFormat->deallocate(fData);
    fData = nullptr;
    fOwnsData = false;
}
