#pragma once
#include <array>
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

/// The name of a shape, as scenes and messages write it.
[[nodiscard]] const char* shapeName(Shape shape);

/// A picture for a sampler, or a stream of the shape for a per-vertex input.
struct NamedValue
{
    std::string name;
    std::string directory; ///< what a file's name starts from
    float normalScale = 0; ///< other than 0: the picture holds heights, and is to be turned into normals
};

/// The value that the user gave to an input of a material or light.
struct InputValue
{
    std::variant<std::vector<double>, NamedValue> value;
    std::string origin; ///< the scene file, or the program
    std::string asker;  ///< where in it the value stands, for messages
};

struct SceneLight
{
    std::string key; ///< goes ahead of the names of its inputs
    std::string function;
    std::string asker; ///< where it was asked for, for messages
};

/// What is to be shown. Angles are in degrees, colours as in materials.
struct Scene
{
    std::string material; ///< FILE or FILE:NAME
    std::string stdlib;
    std::vector<std::string> libraries;
    std::optional<std::vector<SceneLight>> lights; ///< nothing: lights that suit the material
    std::map<std::string, InputValue> inputs;      ///< by the names of the uniforms and of the per-vertex inputs

    Shape shape = Shape::Sphere;
    bool smooth = true;       ///< whether the facets of a shape get the normals of the surface that they stand for
    unsigned particles = 600; ///< how many
    unsigned grid = 1;        ///< objects on a side
    double spacing = 2.5;     ///< from one object to the next

    float pitch = 20; ///< how far the eye is above the scene
    float yaw = -30;  ///< how far the scene is turned
    float distance = 4.5f;
    float opening = 32; ///< of the field of view, from top to bottom
    std::array<double, 3> target{};

    std::array<float, 3> top{0.30f, 0.34f, 0.40f}; ///< the background
    std::array<float, 3> bottom{0.10f, 0.11f, 0.13f};
    bool axes = false;
    bool wire = false;
    unsigned width = 640;
    unsigned height = 480;

    std::vector<std::string> files; ///< all that it was read from and that it names, for watching
};
