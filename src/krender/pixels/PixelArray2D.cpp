#include <krender/pixels/PixelArray2D.h>

#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <algorithm>
#include <cstring>

namespace
{

/// The pixel types that have routines.
enum RoutineType : std::int32_t
{
    kFixed8Routines = 2,
    kFloatRoutines = 4,
};

/// Calls routine(colour format, pixels) with the types that go with the format's pixel type.
/// @return  what the routine returns, or its type's zero where there is no such format
template <class Routine>
auto dispatch(const krSysPixelFormat& format, void* data, Routine routine)
{
    using Result = decltype(routine(static_cast<const krColorFormatRGBAFloat&>(format), static_cast<float*>(data)));
    if (format.pixelType() == kFixed8Routines)
        if (const auto* fixed8 = dynamic_cast<const krColorFormatRGBAFixed8*>(&format))
            return static_cast<Result>(routine(*fixed8, static_cast<unsigned char*>(data)));
    if (format.pixelType() == kFloatRoutines)
        if (const auto* rgbaFloat = dynamic_cast<const krColorFormatRGBAFloat*>(&format))
            return routine(*rgbaFloat, static_cast<float*>(data));
    return Result{};
}

} // namespace

PixelArray2D::PixelArray2D(const krSysPixelFormat& f, unsigned w, unsigned h) : IPixelArray(f, w, h, 1) {}

// The base starts empty: there is nothing of the other array that it could share.
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
        if (o.fData != nullptr && o.fFormat != nullptr)
            fData = o.fFormat->allocate(o.fWidth, o.fHeight, 1);
        if (fData != nullptr)
        {
            // A copy starts a new image of the same layout, and the host uploads or fills it next: copying all of it
            // would cost each texture a pass over pixels that are never read. Only the head is handed on.
            constexpr std::size_t kHead = 8;
            fOwnsData = true;
            std::memcpy(fData, o.fData, std::min(kHead, std::size_t{o.pixelSize()} * o.fWidth * o.fHeight));
        }
    }
    fFormat = o.fFormat;
    fWidth = o.fWidth;
    fHeight = o.fHeight;
    fDepth = o.fDepth;
}

unsigned PixelArray2D::pixelSize() const noexcept
{
    return fFormat != nullptr ? static_cast<unsigned>(fFormat->bytesPerPixel()) : 0;
}

int PixelArray2D::pixelType() const noexcept { return fFormat != nullptr ? fFormat->pixelType() : 0; }

bool PixelArray2D::convertToNormalMap(float scale)
{
    // With a single row or column the routines read pixels ahead of the image, and there are none in an array.
    if (!fOwnsData || fWidth < 2 || fHeight < 2)
        return false;
    return dispatch(*fFormat, fData,
                    [&](const auto& format, auto* pixels)
                    { return format.convertToNormalMap(pixels, fWidth, fHeight, scale); });
}

void PixelArray2D::resize(unsigned w, unsigned h)
{
    if (fData == nullptr || fFormat == nullptr || (w == fWidth && h == fHeight))
        return;
    void* resized = dispatch(*fFormat, fData,
                             [&](const auto& format, auto* pixels) -> void*
                             { return format.resize(pixels, fWidth, fHeight, w, h); });
    if (resized == nullptr)
        return;
    fFormat->deallocate(fData);
    fData = resized;
    fWidth = w;
    fHeight = h;
}
