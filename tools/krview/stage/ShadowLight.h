#pragma once
#include "InputNames.h"
#include "Placements.h"

#include <krview/scene/Scene.h>

#include <krender/platform/Linear.h>
#include <krender/shading/DataType.h>
#include <krender/spatial/AABoundingBox.h>

#include <functional>
#include <string>
#include <vector>

/// The numbers of an input by its name in scenes; null when there is none.
using NumbersByName = std::function<const std::vector<double>*(const std::string& name)>;

/// The key of the light that casts shadows; empty for none. Throws an InputError if the one that the scene names takes no
/// depth map.
[[nodiscard]] std::string shadowLight(const Scene& scene, const std::vector<ObjectMaterials>& objects);

/// The input of a light that is of a type; null when there is none.
[[nodiscard]] const ProgramInput* inputOf(const Material& material, const std::string& light, DataType type);

/// What a light looks at.
struct Ball
{
    krLinear::Vector middle;
    double radius; ///< at least a little
};

[[nodiscard]] Ball ballAround(const AABoundingBox& bounds);

/// From the scene to the clip space of what a light sees, as its inputs tell: those named "position", "target" (or "axis",
/// towards the light) and "cone" (degrees across) for a lamp, "direction" (towards the light) for one far away.
/// It is no wider than what casts shadows, and so deep that all gets them.
[[nodiscard]] krLinear::ProjMatrix shadowView(const std::string& light, const NumbersByName& numbers,
                                              const Placements& placements);

/// From the clip space to the depth map, all from 0 to 1.
[[nodiscard]] const krLinear::ProjMatrix& clipToMap();
