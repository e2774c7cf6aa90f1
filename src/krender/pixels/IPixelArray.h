#pragma once
#include <krender/Export.h>
#include <krender/pixels/IBuffer.h>
#include <krender/pixels/krSysPixelFormat.h>

/// Pixels in memory, laid out by a format. The array borrows the format, which must outlive it.
class KRENDER_EXPORT IPixelArray : public IBuffer
{
public:
    /// An empty array without a format.
    IPixelArray() noexcept = default;
    /// Returns the pixels to their format, whether or not the array owns them.
    ~IPixelArray() override;

    /// Fills the array; nothing is checked. An array without pixels is left alone.
    /// @param src        pixelSize * width * height * depth bytes, borrowed
    /// @param pixelSize  bytes per pixel, at most those of the format
    void copy(const void* src, unsigned pixelSize) noexcept;

    /// The pixels, x fastest, then y, then z; null when the array is empty and when there was no memory for them.
    [[nodiscard]] void* data() noexcept { return fData; }
    [[nodiscard]] const void* data() const noexcept { return fData; }
    [[nodiscard]] unsigned width() const noexcept { return fWidth; }
    [[nodiscard]] unsigned height() const noexcept { return fHeight; }
    [[nodiscard]] unsigned depth() const noexcept { return fDepth; }
    /// The borrowed format, or null.
    [[nodiscard]] const krSysPixelFormat* format() const noexcept { return fFormat; }
    [[nodiscard]] bool ownsData() const noexcept { return fOwnsData; }

protected:
    /// An array of pixels, not initialised, in the plain storage of krSysPixelFormat::allocate. It stays empty, with a
    /// format but without a size, when a dimension is 0. When there is no memory, data() is null while the dimensions and
    /// ownsData() are those of a full array.
    IPixelArray(const krSysPixelFormat& format, unsigned w, unsigned h, unsigned d);

    /// Returns the pixels, if there are any, to the format.
    void release() noexcept;

    void* fData = nullptr;
    unsigned fWidth = 0;
    unsigned fHeight = 0;
    unsigned fDepth = 0;
    const krSysPixelFormat* fFormat = nullptr;
    bool fOwnsData = false;
};
