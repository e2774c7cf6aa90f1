#pragma once
#include <krender/Export.h>
#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/krSysPixelFormat.h>

/// Pixels in three dimensions: slices of rows.
class KRENDER_EXPORT PixelArray3D : public IPixelArray
{
public:
    /// An empty array without a format.
    PixelArray3D() noexcept = default;
    /// An array of w x h x d pixels, not initialised; empty when a size is 0, without data when there is no memory.
    /// @param f  borrowed; must outlive the array
    PixelArray3D(const krSysPixelFormat& f, unsigned w, unsigned h, unsigned d);
    ~PixelArray3D() override;
};
