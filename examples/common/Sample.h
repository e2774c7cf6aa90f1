#pragma once
#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Interface.h>
#include <krender/shading/DataType.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What both example hosts draw and how they read materials. None of it knows a graphics API.
namespace sample
{

/// One vertex of the mesh.
struct Vertex
{
    std::array<float, 4> place; ///< the fourth is 1
    std::array<float, 3> normal;
    std::array<float, 3> tangent;
    std::array<float, 2> textureCoord;
    std::array<float, 4> color;
};

struct Mesh
{
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> triangles; ///< three entries each, counter-clockwise seen from outside
};

/// A ball of radius 1 around the origin.
[[nodiscard]] Mesh makeBall();

/// Where in a vertex the value of an input stands.
struct VertexField
{
    std::size_t offset;  ///< in bytes
    unsigned components; ///< that the mesh has; a program may ask for fewer or more
};

/// The part of a vertex that suits an input best, by its name and type.
[[nodiscard]] VertexField fieldOf(const std::string& input, DataType type);

/// How clip space counts depth.
enum class ClipDepth
{
    MinusOneToOne, ///< OpenGL
    ZeroToOne,     ///< Vulkan, Direct3D, Metal
};

/// The bytes of a program's uniform block: the camera, and the default values of the material and its lights.
[[nodiscard]] std::vector<std::byte> uniformBytes(const krFrontend::ProgramInterface& interface, ClipDepth depth);

inline constexpr unsigned kPictureSide = 64;
/// A picture for any sampler: red, green, blue and alpha a pixel, kPictureSide pixels in each direction. For volumes
/// and cube maps it is every slice and face.
[[nodiscard]] std::vector<std::uint8_t> makePicture();

/// Width and height of what the examples draw.
inline constexpr unsigned kSize = 256;

/// Draws a program: kSize by kSize pixels of red, green, blue and alpha, the uppermost row first; an exception tells why
/// not.
using DrawProgram = std::function<std::vector<std::uint8_t>(const krTargets::SpirvProgram& program,
                                                            const krFrontend::ProgramInterface& interface)>;

/// What a host does for the arguments LIGHTS.krs FOLDER MATERIAL.krs...: compiles the first material of each file, lit by
/// all lights of LIGHTS.krs, and writes its picture into the folder as PPM. Errors are printed.
/// @param target  the name of a target
/// @return  what main returns
[[nodiscard]] int drawAll(int argc, char** argv, const std::string& target, const DrawProgram& draw);

} // namespace sample
