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

/// What an object without a mesh of its own is. The first four are the library's own; the others are krview's, finer and
/// with texture coordinates everywhere.
enum class Shape
{
    Cube,
    Sphere,
    Cylinder,
    Particles,
    SmoothSphere,
    SmoothCylinder,
    Box,
    Plane,
    Torus,
    ShaderBall,
};

/// The names of the shapes in scene files, options and messages.
inline constexpr std::array kShapeNames{"cube", "sphere", "cylinder", "particles",  "smooth-sphere", "smooth-cylinder",
                                        "box",  "plane",  "torus",    "shader-ball"};
static_assert(kShapeNames.size() == static_cast<std::size_t>(Shape::ShaderBall) + 1);

[[nodiscard]] constexpr const char* shapeName(Shape shape) { return kShapeNames[static_cast<std::size_t>(shape)]; }

/// The most objects on each side of a grid.
inline constexpr unsigned kMostObjects = 200;
inline constexpr unsigned kMostParticles = 100000;
inline constexpr unsigned kLeastFineness = 3;
inline constexpr unsigned kGreatestFineness = 1024;
inline constexpr unsigned kMostSamples = 64;
/// Of windows and pictures, pixels.
inline constexpr unsigned kLeastSide = 8;
inline constexpr unsigned kGreatestSide = 8192;
/// Of depth maps.
inline constexpr unsigned kLeastShadow = 16;
inline constexpr unsigned kGreatestShadow = 8192;
/// Between the eye and what it looks at.
inline constexpr float kLeastDistance = 0.001f;
inline constexpr float kGreatestDistance = 1000000;

/// How a picture goes on beyond its edges.
enum class Wrap
{
    Repeat,
    Mirror,
    Clamp,
};
inline constexpr std::array kWrapNames{"repeat", "mirror", "clamp"};

/// How a picture is read between its pixels.
enum class Filter
{
    Nearest,
    Linear,
    Mipmap,
};
inline constexpr std::array kFilterNames{"nearest", "linear", "mipmap"};

/// A picture for a sampler, or a stream of the shape for a per-vertex input.
struct NamedValue
{
    std::string name;      ///< a file, a built-in picture or a stream; of a cube map: a picture of all directions
    std::string directory; ///< the folder that the name of a file is relative to
    float normalScale =
        0; ///< other than 0: the picture holds heights, which are scaled by this and turned into normals
    std::vector<std::string> faces = {}; ///< the six pictures of a cube map: +x, -x, +y, -y, +z, -z; else none
    std::optional<Wrap> wrap = {};       ///< nothing: a cube map clamps, others repeat
    std::optional<Filter> filter = {};   ///< nothing: Mipmap
    std::optional<bool> isCoded = {};    ///< whether its numbers are coded as sRGB; nothing: as its input says
};

/// The value that the user gave to an input of a material or light.
struct InputValue
{
    std::variant<std::vector<double>, NamedValue> value;
    InputPlace origin;
    std::string place; ///< where the value stands in the scene or the options, for messages
    /// Whether it means nothing, and is no error, where no input takes it: it was set in the panel, or for a material that
    /// was replaced there.
    bool isOptional = false;
};

/// Values by the names of the uniforms and of the per-vertex inputs.
using InputValues = std::map<std::string, InputValue>;

/// What a surface is drawn with.
struct Look
{
    std::string material;              ///< FILE or FILE:NAME; of a part: empty for that of its object
    InputValues inputs;                ///< ahead of the scene's
    std::optional<bool> isTransparent; ///< blended over what lies behind, by its alpha; nothing: as the mesh file says
    InputPlace origin;                 ///< of a part
};

/// A thing in the scene.
struct SceneObject
{
    std::string name; ///< for options, messages and the panel; unique
    std::string mesh; ///< the file; empty: the shape
    Shape shape = Shape::Sphere;
    bool isSmooth = true;     ///< whether the library's shapes get smooth normals instead of those of their facets
    unsigned fineness = 64;   ///< pieces around krview's own round shapes
    unsigned particles = 600; ///< number of particles
    Look look;
    std::map<std::string, Look> parts; ///< of the parts of the mesh that look different, by their names
    std::array<double, 3> position{};
    std::array<double, 3> rotation{}; ///< degrees about x, then y, then z
    std::array<double, 3> scale{1, 1, 1};
    bool isFitted = true; ///< whether it is first centred and scaled so that its longest side is 2, ahead of the rest
    bool castsShadow = true;
};

/// The looks of an object: its own first, then those of its parts.
[[nodiscard]] inline std::vector<Look*> looksOf(SceneObject& object)
{
    std::vector<Look*> looks{&object.look};
    for (auto& [name, look] : object.parts)
        looks.push_back(&look);
    return looks;
}

/// A picture of what is around the scene, far away.
struct Environment
{
    NamedValue picture;
    float turn = 0;      ///< degrees about the upright axis
    float intensity = 1; ///< factor of its light
    bool isShown = true; ///< as the background
    float blur = 0;      ///< of the background, 0 to 1
    InputPlace origin;
};

/// The depth map of the light that casts shadows.
struct Shadow
{
    std::string light;    ///< the key; empty: the first that takes a depth map
    unsigned size = 1024; ///< pixels on each side
    InputPlace origin;    ///< of the light's key
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
    std::vector<SceneObject> objects{1};
    std::string stdlib;
    std::vector<std::string> libraries;
    std::vector<std::string> includeFolders; ///< where included files are looked for after their own folder
    bool plain = false;                      ///< whether the sources are read as plain KRSL
    std::optional<std::vector<krTools::LightName>> lights; ///< nothing: defaultLights()
    InputValues inputs; ///< of all objects that do not set them themselves, and of the lights, behind their keys

    unsigned grid = 1;    ///< objects on each side of a grid of the only object
    double spacing = 2.5; ///< between the centres of two objects of the grid

    float pitch = 20; ///< of the scene towards the eye
    float yaw = -30;  ///< of the scene about its upright axis
    float distance = 4.5f;
    float opening = 32; ///< the field of view from top to bottom
    std::array<double, 3> target{};
    bool isFramed = false; ///< whether the view starts with target and distance such that all objects fit

    std::array<float, 3> top{0.30f, 0.34f, 0.40f}; ///< the background, as a colour picker shows it
    std::array<float, 3> bottom{0.10f, 0.11f, 0.13f};
    std::optional<Environment> environment;
    Shadow shadow;
    bool axes = false;
    bool wire = false;
    unsigned samples = 4; ///< a pixel
    bool encodes = true;  ///< whether the frame buffer codes what materials write, which is linear, as sRGB
    unsigned width = 640;
    unsigned height = 480;

    std::string file;               ///< the scene file; empty for none
    std::vector<std::string> files; ///< the scene file and the sources that it names, for --watch
};

/// All that sets values of inputs: the scene's own first, then those of its objects.
[[nodiscard]] inline std::vector<InputValues*> inputsOf(Scene& scene)
{
    std::vector<InputValues*> all{&scene.inputs};
    for (SceneObject& object : scene.objects)
        for (Look* look : looksOf(object))
            all.push_back(&look->inputs);
    return all;
}
