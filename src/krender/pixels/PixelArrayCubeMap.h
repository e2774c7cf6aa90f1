#pragma once
#include <krender/Export.h>
#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/krSysPixelFormat.h>

/// The six faces of a cube map, stored as the slices of an array of depth 6.
class KRENDER_EXPORT PixelArrayCubeMap : public IPixelArray
{
public:
    /// An empty array without a format.
    PixelArrayCubeMap() noexcept = default;
    /// An array of six times w x h pixels, not initialised; empty when a size is 0, without data when there is no memory.
    /// @param f  borrowed; must outlive the array
    PixelArrayCubeMap(const krSysPixelFormat& f, unsigned w, unsigned h);
    ~PixelArrayCubeMap() override;
};
