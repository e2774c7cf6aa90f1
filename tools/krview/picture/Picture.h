#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/PixelArray2D.h>

#include <cstddef>
#include <string>

/// The format of most pictures: 8-bit RGBA, with the pixel type whose arrays can be resized and turned into normals.
[[nodiscard]] const krSysPixelFormat& pictureFormat();
/// The format of pictures of light, which has no upper bound and is not coded: RGBA of floats, likewise.
[[nodiscard]] const krSysPixelFormat& lightFormat();
/// Whether pixels are in lightFormat().
[[nodiscard]] bool isLight(const IPixelArray& pixels);

/// The most pixels on each side of a picture.
inline constexpr std::size_t kGreatestPictureSide = 16384;

/// A picture of uninitialised pixels in pictureFormat(), the lowest row first as in OpenGL.
[[nodiscard]] Ref<PixelArray2D> newPicture(unsigned width, unsigned height);
/// Likewise in lightFormat().
[[nodiscard]] Ref<PixelArray2D> newLightPicture(unsigned width, unsigned height);

/// Reads a file of at most 256 MB that is, by its contents, PNG or JPEG, of 16384 pixels on a side and 8192 times 8192 in
/// all, or Radiance HDR, of half as many. Throws a krTools::FileError.
/// @return  in pictureFormat(), or in lightFormat() if it is HDR
[[nodiscard]] Ref<PixelArray2D> readPicture(const std::string& path);

/// Resizes a picture to sides that every OpenGL 2.1 driver takes: powers of two within a limit.
void fitInto(PixelArray2D& picture, unsigned greatestSide);

/// Writes a PNG file of a picture in pictureFormat() without its alpha, whole or not at all. Throws a krTools::FileError.
void writePng(const std::string& path, const PixelArray2D& picture);
