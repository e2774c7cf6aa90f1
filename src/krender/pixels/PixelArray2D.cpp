#include <krender/pixels/PixelArray2D.h>

#include "krender/pixels/private/NormalMap.h"
#include "krender/pixels/private/PixelStorage.h"
#include "krender/pixels/private/Resize.h"
#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/krColorFormat.h>
#include <krender/pixels/krSysPixelFormat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace
{

/// The pixel types that have routines.
enum RoutineType : std::int32_t
{
    kFixed8Routines = 2,
    kFloatRoutines = 4,
};

/// Calls routine with the pixels as components of the format's pixel type, if that has routines.
template <class Routine>
void dispatch(const krSysPixelFormat& format, void* data, Routine routine)
{
    const auto holds = [&format](std::size_t componentSize)
    { return format.bytesPerPixel() >= static_cast<std::int64_t>(4 * componentSize); };
    if (format.pixelType() == kFixed8Routines && holds(sizeof(unsigned char)))
        routine(static_cast<unsigned char*>(data));
    if (format.pixelType() == kFloatRoutines && holds(sizeof(float)))
        routine(static_cast<float*>(data));
}

} // namespace

PixelArray2D::PixelArray2D(const krSysPixelFormat& f, unsigned w, unsigned h) : IPixelArray(f, w, h, 1) {}

PixelArray2D::PixelArray2D(const PixelArray2D& o)
    : IPixelArray() // NOLINT(readability-redundant-member-init): without it g++ warns
{
    copy(o);
}

PixelArray2D::~PixelArray2D() = default;

void PixelArray2D::copy(const PixelArray2D& o)
{
    fOwnsData = false;
    if (fFormat != o.fFormat || fWidth != o.fWidth || fHeight != o.fHeight)
    {
        release();
        if (o.fData && o.fFormat)
        {
            fData = o.fFormat->allocate(o.fWidth, o.fHeight, 1);
            fOwnsData = true;
            // Deliberate: a copy has the shape of the other image, but of its pixels only the first bytes.
            constexpr std::size_t kCopied = 8;
            const auto bytes = krPixels::storageSize({o.pixelSize(), o.fWidth, o.fHeight});
            if (fData && bytes)
                std::memcpy(fData, o.fData, std::min(kCopied, *bytes));
        }
    }
    fFormat = o.fFormat;
    fWidth = o.fWidth;
    fHeight = o.fHeight;
    fDepth = o.fDepth;
}

unsigned PixelArray2D::pixelSize() const noexcept
{
    return fFormat ? static_cast<unsigned>(fFormat->bytesPerPixel()) : 0;
}

int PixelArray2D::pixelType() const noexcept { return fFormat ? fFormat->pixelType() : 0; }

bool PixelArray2D::convertToNormalMap(float scale)
{
    if (fOwnsData && fWidth >= 2 && fHeight >= 2)
        dispatch(*fFormat, fData, [&](auto* pixels) { krPixels::convertToNormalMap(pixels, fWidth, fHeight, scale); });
    return false;
}

void PixelArray2D::resize(unsigned w, unsigned h)
{
    if (!fData || !fFormat || (w == fWidth && h == fHeight))
        return;
    void* resized = nullptr;
    dispatch(*fFormat, fData,
             [&](const auto* pixels)
             {
                 const auto* color = dynamic_cast<const krColorFormat*>(fFormat);
                 resized = color ? krPixels::resized(*color, pixels, fWidth, fHeight, w, h)
                                 : krPixels::resized(*fFormat, pixels, fWidth, fHeight, w, h);
             });
    if (!resized)
        return;
    fFormat->deallocate(fData);
    fData = resized;
    fWidth = w;
    fHeight = h;
}
