#pragma once
#include <krender/pixels/IPixelArray.h>

/// Slices of rows of pixels.
class KRENDER_EXPORT PixelArray3D : public IPixelArray
{
public:
    /// An empty array without a format.
    PixelArray3D() noexcept = default;
    /// Pixels that are not initialised; empty when a size is 0 or there is no memory.
    /// @param f  borrowed; must outlive the array
    PixelArray3D(const krSysPixelFormat& f, unsigned w, unsigned h, unsigned d);
    ~PixelArray3D() override;
};
