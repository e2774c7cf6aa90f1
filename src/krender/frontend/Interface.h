#pragma once
#include <krender/Export.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingAttribute.h>

#include <cstdint>
#include <string>
#include <vector>

namespace krFrontend
{

/// A value of a default or of metadata. A matrix stands column by column.
struct Value
{
    DataType type = kInvalidType; ///< kInvalidType: there is none
    std::vector<float> floats;    ///< of float types and matrices
    std::vector<int> ints;        ///< of int types; 0 or 1 for a bool
    std::string text;             ///< of a string

    [[nodiscard]] bool isSet() const noexcept { return type != kInvalidType; }
};

struct MetadataItem
{
    std::string name;
    Value value;
};

/// An argument of a function, material or light.
struct InputInterface
{
    std::string name;
    DataType type = kInvalidType;
    bool isOutput = false; ///< out or inout
    krShadingDag::CompFreqRange frequencies;
    Value defaultValue;
    std::vector<MetadataItem> metadata;
    SourceRange range; ///< of the name
};

enum class ShaderKind : std::uint8_t
{
    Function,
    Material,
    Light,
    Displacement,
};

/// A function, material or light as its header says.
struct ShaderInterface
{
    ShaderKind kind = ShaderKind::Function;
    std::string name;
    DataType result = kVoid;
    bool hasBody = false;
    SourceRange range; ///< of the name
    std::vector<InputInterface> arguments;
};

/// What a module declares, in the order of its sources: functions, materials and lights.
[[nodiscard]] KRENDER_EXPORT std::vector<ShaderInterface> interfaceOf(const Module& module);

/// Where a uniform's value comes from.
struct UniformInterface
{
    std::string programName; ///< what the host sets
    std::string name;        ///< in KRSL
    std::string light;       ///< the key of the light that it belongs to; empty for the material
    DataType type = kInvalidType;
    Value defaultValue;
    std::vector<MetadataItem> metadata;
    const Module* module = nullptr; ///< that declares it
    SourceRange range;              ///< of the name in that module
    /// The byte of the uniform block at which it begins; -1: it stands in none.
    int offset = -1;
    /// Of a matrix in a block: the bytes from one column to the next; else 0.
    int matrixStride = 0;
    /// Of a sampler of a program with a block: its binding; else -1.
    int binding = -1;
};

struct VertexInputInterface
{
    std::string programName;
    std::string name;
    DataType type = kInvalidType;
    /// The register that brings it, where the target has registers: n is TEXCOORDn; -1 elsewhere.
    int texCoord = -1;
    /// The location that brings it, where the target has locations; -1 elsewhere.
    int location = -1;
    std::vector<MetadataItem> metadata;
};

/// A member of the uniform block that every program has.
struct FrameUniformInterface
{
    std::string programName;
    DataType type = kInvalidType;
    int offset = 0;
    int matrixStride = 0;
};

/// A vertex input that every program has.
struct FrameInputInterface
{
    std::string programName;
    DataType type = kInvalidType;
    int location = 0;
};

/// The uniform block of a program in Vulkan GLSL, and of what is translated from it: set 0, binding 0, laid out as
/// std140 says. A bool is an int of 0 or 1 there.
struct UniformBlockInterface
{
    std::string name; ///< empty: the target has no block
    int size = 0;     ///< in bytes, a multiple of 16
    std::vector<FrameUniformInterface> frameUniforms;
    std::vector<FrameInputInterface> frameInputs;
};

/// What a host has to give a program.
struct ProgramInterface
{
    std::vector<UniformInterface> uniforms;
    std::vector<VertexInputInterface> vertexInputs;
    std::vector<std::string> providedValues; ///< of gWorldPos, gWorldNormal, gWorldTangent and gEyePos, those in use
    UniformBlockInterface block;
};

} // namespace krFrontend
