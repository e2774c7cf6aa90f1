#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray1D.h>
#include <krender/pixels/PixelArray2D.h>
#include <krender/pixels/PixelArray3D.h>
#include <krender/pixels/PixelArrayCubeMap.h>

#include <string>
#include <vector>

// Pictures that need no file. All of them tile without a seam.

/// The names of the two-dimensional ones: "checker", "noise" and "sky".
[[nodiscard]] const std::vector<std::string>& builtInPictureNames();

/// The picture with one of these names.
[[nodiscard]] Ref<PixelArray2D> builtInPicture(const std::string& name);
/// Black to white.
[[nodiscard]] Ref<PixelArray1D> builtInRamp();
/// Grey noise.
[[nodiscard]] Ref<PixelArray3D> builtInNoise();
/// The name of the built-in cube map.
inline constexpr const char* kSurroundingsName = "surroundings";
/// A clear sky with a sun over a tiled floor.
/// @param side  of its faces, pixels
[[nodiscard]] Ref<PixelArrayCubeMap> surroundingsPicture(unsigned side);
