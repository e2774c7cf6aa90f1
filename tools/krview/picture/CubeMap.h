#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>
#include <krender/pixels/PixelArrayCubeMap.h>

#include <cstddef>
#include <functional>

/// A cube map of uninitialised pixels.
[[nodiscard]] Ref<PixelArrayCubeMap> newCube(const krSysPixelFormat& format, unsigned side);

/// Makes a cube map of six pictures in the order of the faces. Their upper rows are up (of the upper face towards -z, of
/// the lower one towards +z), and what is on the right of them is on the left of who stands within the cube, as OpenGL
/// has it. Throws a PictureError that says which one is not square, or has another side or format than the first.
/// @param read          reads the picture of a face, from 0
/// @param greatestSide  larger ones are made smaller, as are those of more than 2048 pixels on a side
/// @return  in the format of the pictures
[[nodiscard]] Ref<PixelArrayCubeMap> cubeOfFaces(const std::function<Ref<PixelArray2D>(std::size_t face)>& read,
                                                 unsigned greatestSide);

/// How surroundings are put around the scene.
struct Setting
{
    float turn = 0;       ///< radians about the upright axis
    float intensity = 1;  ///< factor of the light
    bool decodes = false; ///< whether 8-bit pixels are coded as sRGB, and the cube map gets what they mean
};

/// Makes a cube map of a picture of all directions: longitudes across, -z in the middle and +x on the right of it,
/// latitudes from bottom to top. The sides of its faces are the least power of two that is not below a quarter of the
/// picture's width, 4 to 1024.
/// @return  in lightFormat()
[[nodiscard]] Ref<PixelArrayCubeMap> cubeOfLatLong(const PixelArray2D& picture, const Setting& setting);

/// Puts a cube map into another setting.
/// @return  in lightFormat()
[[nodiscard]] Ref<PixelArrayCubeMap> cubeOfCube(const PixelArrayCubeMap& cube, const Setting& setting);
