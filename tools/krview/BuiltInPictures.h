#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray1D.h>
#include <krender/pixels/PixelArray2D.h>
#include <krender/pixels/PixelArray3D.h>
#include <krender/pixels/PixelArrayCubeMap.h>

#include <string>
#include <vector>

/// The pictures that need no file. All of them repeat without a seam.

/// "checker", "noise" and "sky".
[[nodiscard]] const std::vector<std::string>& builtInPictureNames();

/// The picture of one of these names.
[[nodiscard]] Ref<PixelArray2D> builtInPicture(const std::string& name);
/// From dark to light.
[[nodiscard]] Ref<PixelArray1D> builtInRamp();
[[nodiscard]] Ref<PixelArray3D> builtInNoise();
/// A clear sky with its sun over a tiled floor.
[[nodiscard]] Ref<PixelArrayCubeMap> builtInSurroundings();
