#pragma once
#include "CubePyramid.h"

#include <krender/core/Ref.h>
#include <krender/pixels/PixelArrayCubeMap.h>

// What reaches a surface from all around, worked out ahead for each direction; the same surroundings give the same bits.

/// What a matte surface receives that faces a direction: the mean of the light from all around, weighted by the cosine.
/// White surroundings of 1 give 1.
/// @return  in lightFormat()
[[nodiscard]] Ref<PixelArrayCubeMap> irradianceOf(const CubePyramid& light);

/// Whether surroundings that are mirrored in a surface look the same as sharp ones.
[[nodiscard]] bool isSharp(float blur);

/// What an uneven mirror shows that is seen straight on.
/// @param blur  its roughness as the materials have it, 0 to 1: a lobe of Trowbridge and Reitz of width blur * blur
/// @return  in lightFormat()
[[nodiscard]] Ref<PixelArrayCubeMap> mirroredOf(const CubePyramid& light, float blur);
