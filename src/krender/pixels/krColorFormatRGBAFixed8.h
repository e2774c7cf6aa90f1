#pragma once
#include <krender/pixels/krColorFormat.h>

#include <array>

/// 8-bit red, green, blue and alpha, interleaved, rows from x = 0, slice after slice.
class KRENDER_EXPORT krColorFormatRGBAFixed8 : public krColorFormat
{
public:
    krColorFormatRGBAFixed8() noexcept;
    ~krColorFormatRGBAFixed8() override;

    /// Gives an image back; null is allowed.
    void deallocate(void* pixels) const override;
    /// @return  an image of w x h x d pixels, not initialised, owned by the caller until deallocate; null when a dimension
    ///          is 0, when 4 * w * h * d does not fit 32 bits, and when there is no memory
    [[nodiscard]] void* allocate(unsigned w, unsigned h, unsigned d) const override;

    /// @param rgba  four components, copied
    void setDefaultValue(const unsigned char* rgba) noexcept;
    /// Copies the default value's four components out; all 0 unless set.
    void defaultValue(unsigned char* rgba) const noexcept;

    /// Reduces floats to 0 and 255: each byte is the low 8 bits of -trunc(component + 0.5), so that values from 0.5 up to
    /// 1.5 give 255. It is a threshold, not a scale.
    /// @param src  w x h x d pixels of four floats, borrowed
    /// @return  an image from allocate, owned by the caller; null when src is null or allocate fails
    [[nodiscard]] unsigned char* convertFromFloat(const float* src, unsigned w, unsigned h, unsigned d) const;

    /// Turns a height field into tangent-space normals, in place (Blinn, "Simulation of Wrinkled Surfaces", 1978). The
    /// height is a pixel's first component; slopes are the differences to the right and lower neighbours times
    /// scale / 255. The last column keeps its heights, the last row repeats the one above.
    /// @param data  h rows of w pixels, borrowed; null does nothing. With h = 1 the row is overwritten with the w pixels
    ///              that precede the buffer, and with w = 1 the first pixel takes components from the one that precedes
    ///              it: callers pass at least two rows and columns unless such pixels exist.
    /// @return  false, always
    bool convertToNormalMap(unsigned char* data, unsigned w, unsigned h, float scale) const;

    /// Resizes by an area-weighted box filter. The footprint of a destination pixel is centred on its corner, so the
    /// picture moves by half a destination pixel.
    /// @param src  srcH rows of srcW pixels, borrowed
    /// @return  an image from allocate, owned by the caller; null when src is null, when a size is 0, when the size does
    ///          not change, and when allocate fails
    [[nodiscard]] unsigned char* resize(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned dstW,
                                        unsigned dstH) const;

protected:
    /// For formats that pixel arrays shall convert and resize, which go by the pixel type.
    explicit krColorFormatRGBAFixed8(std::int32_t pixelType) noexcept;

private:
    std::array<unsigned char, 4> fDefaultValue{};
};
