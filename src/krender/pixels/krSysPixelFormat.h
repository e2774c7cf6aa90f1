#pragma once
#include <krender/pixels/IPixelFormat.h>

#include <cstdint>

/// How pixels lie in memory, and where that memory comes from.
///
/// Pixel arrays take their storage from the allocate of this class, whatever the format's own class, and give it back
/// through deallocate. An override of deallocate must therefore end with std::free, or that storage leaks.
class KRENDER_EXPORT krSysPixelFormat : public IPixelFormat
{
public:
    /// @param bytesPerPixel  what storage is measured by
    /// @param pixelType      chooses the routines of pixel arrays: 2 for 8-bit RGBA, 4 for float RGBA, others have none
    /// @param componentCode  for the host
    krSysPixelFormat(std::int32_t bytesPerPixel, std::int32_t pixelType, std::int32_t componentCode) noexcept;
    ~krSysPixelFormat() override;

    /// Gives storage back; null is allowed.
    virtual void deallocate(void* pixels) const;

    /// @return  storage for w x h x d pixels, not initialised, owned by the caller until deallocate; null when there is
    ///          none or when its bytes do not fit 32 bits
    [[nodiscard]] void* allocate(unsigned w, unsigned h, unsigned d) const;

    [[nodiscard]] std::int32_t bytesPerPixel() const noexcept { return fBytesPerPixel; }
    [[nodiscard]] std::int32_t pixelType() const noexcept { return fPixelType; }
    [[nodiscard]] std::int32_t componentCode() const noexcept { return fComponentCode; }

private:
    std::int32_t fBytesPerPixel;
    std::int32_t fPixelType;
    std::int32_t fComponentCode;
};
