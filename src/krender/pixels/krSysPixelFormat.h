#pragma once
#include <krender/Export.h>
#include <krender/pixels/IPixelFormat.h>

#include <cstdint>

/// How pixels lie in memory, and where that memory comes from.
///
/// Pixel arrays take their storage from the allocate of this class, whatever the format's own class, and return it
/// through the virtual deallocate. An override of deallocate must therefore end with std::free, or that storage leaks.
class KRENDER_EXPORT krSysPixelFormat : public IPixelFormat
{
public:
    /// @param bytesPerPixel  the size of a pixel in storage
    /// @param pixelType      chooses the routines of pixel arrays: 2 for 8-bit RGBA, 4 for float RGBA, others have none
    /// @param componentCode  for the host; the library does not read it
    krSysPixelFormat(std::int32_t bytesPerPixel, std::int32_t pixelType, std::int32_t componentCode) noexcept;
    ~krSysPixelFormat() override;

    /// Frees storage that allocate returned; null is allowed.
    virtual void deallocate(void* pixels);
    /// Calls the virtual form, which must not modify a format that was defined const.
    void deallocate(void* pixels) const;

    /// Plain storage for w x h x d pixels, not initialised.
    /// @return  storage that the caller owns until deallocate, also when a dimension is 0; null when the size overflows
    ///          and when there is no memory
    [[nodiscard]] void* allocate(unsigned w, unsigned h, unsigned d) const;

    [[nodiscard]] std::int32_t bytesPerPixel() const noexcept { return fBytesPerPixel; }
    [[nodiscard]] std::int32_t pixelType() const noexcept { return fPixelType; }
    [[nodiscard]] std::int32_t componentCode() const noexcept { return fComponentCode; }

private:
    std::int32_t fBytesPerPixel;
    std::int32_t fPixelType;
    std::int32_t fComponentCode;
};
