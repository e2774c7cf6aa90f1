#pragma once
#include <krender/Export.h>
#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/krSysPixelFormat.h>

/// A row of pixels.
class KRENDER_EXPORT PixelArray1D : public IPixelArray
{
public:
    /// An empty array without a format.
    PixelArray1D() noexcept = default;
    /// An array of w pixels, not initialised; empty when w is 0, without data when there is no memory.
    /// @param f  borrowed; must outlive the array
    PixelArray1D(const krSysPixelFormat& f, unsigned w);
    ~PixelArray1D() override;
};
