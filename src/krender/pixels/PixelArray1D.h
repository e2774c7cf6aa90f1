#pragma once
#include <krender/pixels/IPixelArray.h>

/// A row of pixels.
class KRENDER_EXPORT PixelArray1D : public IPixelArray
{
public:
    /// An empty array without a format.
    PixelArray1D() noexcept = default;
    /// Pixels that are not initialised; empty when w is 0 or there is no memory.
    /// @param f  borrowed; must outlive the array
    PixelArray1D(const krSysPixelFormat& f, unsigned w);
    ~PixelArray1D() override;
};
