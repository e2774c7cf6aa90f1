#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>

#include <cstddef>
#include <stdexcept>
#include <string_view>

// The kinds of picture files. What a file claims is compared with what it can hold before memory is taken for it.

/// What is wrong with a picture; the text has no name of a file.
class PictureError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The most bytes of a file: as many as the largest 8-bit picture takes without compression.
inline constexpr std::size_t kMostPictureBytes = std::size_t{256} << 20;

/// Throws a PictureError for a size that is beyond the limits of 8-bit pictures, or 0.
void checkSize(std::size_t width, std::size_t height);

// All of them throw a PictureError, and pass over what stands behind the picture.

/// @return  in pictureFormat()
[[nodiscard]] Ref<PixelArray2D> decodePng(std::string_view bytes);
/// @return  in pictureFormat()
[[nodiscard]] Ref<PixelArray2D> decodeJpeg(std::string_view bytes);
/// Reads Radiance's format.
/// @return  in lightFormat()
[[nodiscard]] Ref<PixelArray2D> decodeHdr(std::string_view bytes);
