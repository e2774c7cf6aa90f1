#pragma once
#include <krender/Export.h>
#include <krender/pixels/krColorFormat.h>

#include <array>
#include <cstdint>

/// 8-bit red, green, blue and alpha, interleaved: x fastest, then y, then z.
class KRENDER_EXPORT krColorFormatRGBAFixed8 : public krColorFormat
{
public:
    krColorFormatRGBAFixed8() noexcept;
    ~krColorFormatRGBAFixed8() override;

    /// Frees an image; null is allowed.
    void deallocate(void* pixels) override;
    using krColorFormat::deallocate;

    /// Storage for an image of w x h x d pixels, not initialised.
    /// @return  storage that the caller owns until deallocate; null when a dimension is 0, when the size overflows, and
    ///          when there is no memory
    [[nodiscard]] void* allocate(unsigned w, unsigned h, unsigned d) override;
    using krColorFormat::allocate;

    /// @param rgba  four components, copied
    void setDefaultValue(const unsigned char* rgba) noexcept;
    /// Copies the default value out; its four components are 0 unless set.
    /// @param rgba  room for four components
    void defaultValue(unsigned char* rgba) const noexcept;

    /// Converts floats to bytes 0 and 255 by a threshold, not by scaling: a byte is the low 8 bits of
    /// -trunc(component + 0.5), so values from 0.5 up to 1.5 give 255.
    /// @param src  w x h x d pixels of four floats, borrowed
    /// @return  an image from allocate, owned by the caller; null when src is null and when allocate returns null
    [[nodiscard]] unsigned char* convertFromFloat(const float* src, unsigned w, unsigned h, unsigned d) const;

    /// Turns a height field into tangent-space normals, in place (Blinn, "Simulation of Wrinkled Surfaces", 1978).
    /// Heights are the pixels' first components; slopes are the differences to the right and lower neighbours times
    /// scale / 255. The last pixel of each row keeps its height as first component; the last row repeats the one above.
    /// @param data  h rows of w pixels, borrowed; null does nothing. A single row becomes a copy of the w pixels that
    ///              precede the buffer, and a single column takes two components of the pixel that precedes it, so pass
    ///              at least two rows and columns unless those pixels exist.
    /// @return  false, always
    bool convertToNormalMap(unsigned char* data, unsigned w, unsigned h, float scale) const;

    /// Resizes an image with an area-weighted box filter. The filter's footprint is centred on a destination pixel's
    /// corner, not its centre, so the picture moves by half a destination pixel.
    /// @param src  srcH rows of srcW pixels, borrowed
    /// @return  an image from allocate, owned by the caller; null when src is null, when a size is 0, when the size does
    ///          not change, and when there is no memory
    [[nodiscard]] unsigned char* resize(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned dstW,
                                        unsigned dstH) const;

protected:
    /// For derived formats with a pixel type that pixel arrays know.
    explicit krColorFormatRGBAFixed8(std::int32_t pixelType) noexcept;

private:
    std::array<unsigned char, 4> fDefaultValue{};
};
