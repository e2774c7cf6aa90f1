#pragma once
#include "InputError.h"

#include <common/SourceNames.h>

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

enum class Shape
{
    Cube,
    Sphere,
    Cylinder,
    Particles,
};

/// The names of the shapes in scene files, options and messages.
inline constexpr std::array kShapeNames{"cube", "sphere", "cylinder", "particles"};
static_assert(kShapeNames.size() == static_cast<std::size_t>(Shape::Particles) + 1);

[[nodiscard]] constexpr const char* shapeName(Shape shape) { return kShapeNames[static_cast<std::size_t>(shape)]; }

/// The most objects on each side of a grid.
inline constexpr unsigned kMostObjects = 200;

/// A picture for a sampler, or a stream of the shape for a per-vertex input, by its name.
struct NamedValue
{
    std::string name;
    std::string directory; ///< the folder that the name of a file is relative to
    float normalScale =
        0; ///< other than 0: the picture holds heights, which are scaled by this and turned into normals
};

/// The value that the user gave to an input of a material or light.
struct InputValue
{
    std::variant<std::vector<double>, NamedValue> value;
    InputPlace origin;
    std::string place; ///< where the value stands in the scene or the options, for messages
};

/// The lights of a scene that names none.
[[nodiscard]] inline std::vector<krTools::LightName> defaultLights()
{
    const std::string place = "the light that comes with every scene";
    return {{place, "sun", "directionalLight", ""}, {place, "sky", "skyLight", ""}};
}

/// What is shown and how. Angles are in degrees, colours red, green and blue from 0 to 1.
struct Scene
{
    std::string material; ///< FILE or FILE:NAME
    std::string stdlib;
    std::vector<std::string> libraries;
    std::vector<std::string> includeFolders; ///< where included files are looked for after their own folder
    bool plain = false;                      ///< whether the sources are read as plain KRSL
    std::optional<std::vector<krTools::LightName>> lights; ///< nothing: defaultLights()
    std::map<std::string, InputValue> inputs; ///< by the names of the uniforms and of the per-vertex inputs

    Shape shape = Shape::Sphere;
    bool smooth = true;       ///< whether shapes get smooth normals instead of those of their facets
    unsigned particles = 600; ///< number of particles
    unsigned grid = 1;        ///< objects on each side of the grid
    double spacing = 2.5;     ///< between the centres of two objects

    float pitch = 20; ///< of the scene towards the eye
    float yaw = -30;  ///< of the scene about its upright axis
    float distance = 4.5f;
    float opening = 32; ///< the field of view from top to bottom
    std::array<double, 3> target{};

    std::array<float, 3> top{0.30f, 0.34f, 0.40f}; ///< the background
    std::array<float, 3> bottom{0.10f, 0.11f, 0.13f};
    bool axes = false;
    bool wire = false;
    unsigned width = 640;
    unsigned height = 480;

    std::vector<std::string> files; ///< the scene file and the sources that it names, for --watch
};
