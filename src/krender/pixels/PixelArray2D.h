#pragma once
#include <krender/pixels/IPixelArray.h>

/// Rows of pixels. What it does to the pixels goes by the format's pixel type and not by its component code: 2 means the
/// 8-bit routines of krColorFormatRGBAFixed8, 4 the float routines of krColorFormatRGBAFloat, from one of which the format
/// must be derived. Those two classes themselves have pixel type 14, which means neither.
class KRENDER_EXPORT PixelArray2D : public IPixelArray
{
public:
    /// An empty array without a format.
    PixelArray2D() noexcept = default;
    /// Pixels that are not initialised; empty when a size is 0 or there is no memory.
    /// @param f  borrowed; must outlive the array
    PixelArray2D(const krSysPixelFormat& f, unsigned w, unsigned h);
    /// What copy makes of an empty array.
    PixelArray2D(const PixelArray2D& o);
    ~PixelArray2D() override;

    using IPixelArray::copy;
    /// Takes the other's format and size. With the same format object, width and height the pixels stay as they are, and
    /// the array no longer counts as their owner; otherwise it gets new pixels, of which only the first 8 bytes are copied
    /// and the rest is not initialised. To copy an image, follow with copy(o.data(), o.pixelSize()).
    void copy(const PixelArray2D& o);

    /// Bytes a pixel; 0 without a format.
    [[nodiscard]] unsigned pixelSize() const noexcept;
    /// The format's pixel type; 0 without a format.
    [[nodiscard]] int pixelType() const noexcept;

    /// Turns heights into normals where the array owns its pixels and the pixel type has a routine. An array without a
    /// second row and column stays as it is.
    /// @return  false, always
    bool convertToNormalMap(float scale);
    /// Resizes the pixels where the pixel type has a routine; otherwise, and when there is no memory, nothing changes.
    void resize(unsigned w, unsigned h);
};
