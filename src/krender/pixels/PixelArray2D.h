#pragma once
#include <krender/Export.h>
#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/krSysPixelFormat.h>

/// Rows of pixels.
///
/// convertToNormalMap and resize choose their routine by the format's pixel type alone: 2 for the 8-bit routines of
/// krColorFormatRGBAFixed8, 4 for the float routines of krColorFormatRGBAFloat, any other for none. The class and the
/// component code of the format do not count. Those two classes themselves have pixel type 14, so for them nothing happens.
/// Nor does it for formats whose pixels are smaller than those that the routine works on, 4 or 16 bytes.
class KRENDER_EXPORT PixelArray2D : public IPixelArray
{
public:
    /// An empty array without a format.
    PixelArray2D() noexcept = default;
    /// An array of w x h pixels, not initialised; empty when a size is 0, without data when there is no memory.
    /// @param f  borrowed; must outlive the array
    PixelArray2D(const krSysPixelFormat& f, unsigned w, unsigned h);
    /// An empty array to which o is copied, as copy does it.
    PixelArray2D(const PixelArray2D& o);
    ~PixelArray2D() override;

    using IPixelArray::copy;
    /// Takes the other array's format and size. With the same format object, width and height the pixels are left as they
    /// are, and the array no longer counts as their owner. Otherwise the array gets new pixels: the first 8 bytes are
    /// copied, the others are not initialised. To copy an image, follow with copy(o.data(), o.pixelSize()).
    void copy(const PixelArray2D& o);

    /// Bytes per pixel; 0 without a format.
    [[nodiscard]] unsigned pixelSize() const noexcept;
    /// The format's pixel type; 0 without a format.
    [[nodiscard]] int pixelType() const noexcept;

    /// Turns heights into normals, in place, where the array owns its pixels. An array of one row or one column is left
    /// as it is, as the routines would read pixels ahead of it.
    /// @return  false, always
    bool convertToNormalMap(float scale);
    /// Resizes the pixels. The new ones come from the virtual allocate of a krColorFormat, and from plain storage for
    /// formats without one; the old ones go to the format's deallocate. When a size is 0 and when there is no memory,
    /// nothing changes.
    void resize(unsigned w, unsigned h);
};
