#pragma once
#include <krender/Export.h>
#include <krender/pixels/krColorFormat.h>

#include <array>
#include <cstdint>

/// Float red, green, blue and alpha, interleaved: x fastest, then y, then z.
class KRENDER_EXPORT krColorFormatRGBAFloat : public krColorFormat
{
public:
    krColorFormatRGBAFloat() noexcept;
    ~krColorFormatRGBAFloat() override;

    /// Frees an image; null is allowed.
    void deallocate(void* pixels) override;
    using krColorFormat::deallocate;

    /// Storage for an image of w x h x d pixels, not initialised.
    /// @return  storage that the caller owns until deallocate; null when a dimension is 0, when the size overflows, and
    ///          when there is no memory
    [[nodiscard]] void* allocate(unsigned w, unsigned h, unsigned d) override;
    using krColorFormat::allocate;

    /// @param rgba  four components, copied
    void setDefaultValue(const float* rgba) noexcept;
    /// Copies the default value out; its four components are 0 unless set.
    /// @param rgba  room for four components
    void defaultValue(float* rgba) const noexcept;

    /// Converts bytes to floats: each component becomes (byte + 0.5) / 255, so that 0 and 255 do not give 0 and 1.
    /// @param src  w x h x d pixels of four bytes, borrowed
    /// @return  an image from allocate, owned by the caller; null when src is null and when allocate returns null
    [[nodiscard]] float* convertFromFixed8(const unsigned char* src, unsigned w, unsigned h, unsigned d) const;

    /// Turns a height field into tangent-space normals, in place (Blinn, "Simulation of Wrinkled Surfaces", 1978).
    /// Heights are the pixels' first components; slopes are the differences to the right and lower neighbours times
    /// scale; a normal's component v is stored as (v + 1) / 2. The last pixel of each row keeps its height as first
    /// component, and the last row repeats the one above. When a row is done, the first height of the next row is
    /// replaced by 1.0: its own normal is computed from that, the one above it from the height as passed.
    /// @param data  h rows of w pixels, borrowed; null does nothing. A single row becomes a copy of the w pixels that
    ///              precede the buffer, and a single column takes two components of the pixel that precedes it, so pass
    ///              at least two rows and columns unless those pixels exist.
    /// @return  false, always
    bool convertToNormalMap(float* data, unsigned w, unsigned h, float scale) const;

    /// Resizes an image with an area-weighted box filter. The filter's footprint is centred on a destination pixel's
    /// corner, not its centre, so the picture moves by half a destination pixel.
    /// @param src  srcH rows of srcW pixels, borrowed
    /// @return  an image from allocate, owned by the caller; null when src is null, when a size is 0, when the size does
    ///          not change, and when there is no memory
    [[nodiscard]] float* resize(const float* src, unsigned srcW, unsigned srcH, unsigned dstW, unsigned dstH) const;

protected:
    /// For derived formats with a pixel type that pixel arrays know.
    explicit krColorFormatRGBAFloat(std::int32_t pixelType) noexcept;

private:
    std::array<float, 4> fDefaultValue{};
};
