#pragma once
#include <krender/pixels/IBuffer.h>
#include <krender/pixels/krSysPixelFormat.h>

/// Pixels in memory, laid out by a format. The array borrows the format, which must outlive it.
class KRENDER_EXPORT IPixelArray : public IBuffer
{
public:
    /// An empty array without a format.
    IPixelArray() noexcept = default;
    /// Releases the pixels through their format, owned or not.
    ~IPixelArray() override;

    /// Fills the array; nothing is checked.
    /// @param src        pixelSize * width * height * depth bytes, borrowed
    /// @param pixelSize  bytes a pixel, as in the array's format
    void copy(const void* src, unsigned pixelSize) noexcept;

    /// The pixels, x fastest, then y, then z; null when the array is empty.
    [[nodiscard]] void* data() noexcept { return fData; }
    [[nodiscard]] const void* data() const noexcept { return fData; }
    [[nodiscard]] unsigned width() const noexcept { return fWidth; }
    [[nodiscard]] unsigned height() const noexcept { return fHeight; }
    [[nodiscard]] unsigned depth() const noexcept { return fDepth; }
    /// The borrowed format, or null.
    [[nodiscard]] const krSysPixelFormat* format() const noexcept { return fFormat; }
    [[nodiscard]] bool ownsData() const noexcept { return fOwnsData; }

protected:
    /// An array of uninitialised pixels in the format's plain storage. It stays empty, without a size, when a dimension is
    /// 0 or there is no such storage; it keeps the format all the same.
    IPixelArray(const krSysPixelFormat& format, unsigned w, unsigned h, unsigned d);

    /// Gives the pixels, if there are any, back to the format.
    void release() noexcept;

    void* fData = nullptr;
    unsigned fWidth = 0;
    unsigned fHeight = 0;
    unsigned fDepth = 0;
    const krSysPixelFormat* fFormat = nullptr;
    bool fOwnsData = false;
};
