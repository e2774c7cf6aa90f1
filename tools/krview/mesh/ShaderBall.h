#pragma once
#include "PartArrays.h"

#include <vector>

/// The parts of the shader ball: "ball", a sphere with a groove around it, "ring", the collar that it rests on, and
/// "base", its foot. It is 2 high.
/// @param fineness  pieces around
[[nodiscard]] std::vector<PartArrays> shaderBallParts(unsigned fineness);
