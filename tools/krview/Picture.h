#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>

#include <string>

/// The format of all pictures: 8-bit RGBA, with the pixel type whose arrays can be resized and turned into normals.
[[nodiscard]] const krSysPixelFormat& pictureFormat();

/// A picture of uninitialised pixels, the lowest row first as in OpenGL.
[[nodiscard]] Ref<PixelArray2D> newPicture(unsigned width, unsigned height);

/// Reads a PNG file of at most 256 MB, 16384 pixels on a side and 8192 times 8192 in all. Throws a krTools::FileError.
[[nodiscard]] Ref<PixelArray2D> readPng(const std::string& path);

/// Writes a PNG file without the picture's alpha, whole or not at all. Throws a krTools::FileError.
void writePng(const std::string& path, const PixelArray2D& picture);
