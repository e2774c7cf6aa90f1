#pragma once
#include <krview/scene/Scene.h>

#include <common/MaterialCompiler.h>
#include <common/MessageOutput.h>
#include <common/Source.h>

#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/DataType.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// What the metadata of a sampler say about its picture.
struct PictureHints
{
    /// Of `environment`: "irradiance" or "mirror", what surfaces get of the surroundings; else empty.
    std::string environment;
    std::string blur;            ///< of "mirror": the input, beside this one, that holds how blurred it is
    std::optional<bool> isCoded; ///< of `colorspace`: whether it is "srgb" and not "linear"
};

/// Whether a type is a matrix: the library's table does not count matrix2 among them.
[[nodiscard]] bool isMatrix(DataType type) noexcept;

/// An input of the programs that krview sets.
struct ProgramInput
{
    std::string name; ///< in scenes and messages: the one in the source, behind the key of its light
    std::string programName;
    DataType type;
    bool perVertex;                         ///< an attribute; else a uniform
    std::string light;                      ///< the key of its light; empty for an input of the material
    std::string lightName;                  ///< its name in the light's source
    std::optional<InputValue> defaultValue; ///< as its source gives it
    PictureHints hints = {};
};

/// A material with the lights of a scene, compiled for a target.
struct Material
{
    /// Where a line of the fragment program came from; nowhere for a line that the compiler made up, or when the
    /// material was read as plain KRSL.
    /// @param line  from 1
    [[nodiscard]] krFrontend::LineOrigin origin(std::size_t line) const;

    std::string name;
    krTools::Source vertexProgram; ///< with the preamble, like the other one
    krTools::Source fragmentProgram;
    std::vector<ProgramInput> inputs;                  ///< the material's first
    krFrontend::ProgramInterface interface;            ///< of the programs
    std::optional<krTargets::Translation> translation; ///< where the target is translated
    bool isChecked = false;        ///< whether the front end has checked the sources: the programs are then valid
    std::size_t preambleLines = 0; ///< ahead of the lines of the origins
    std::vector<krFrontend::LineOrigin> fragmentOrigins;
    std::unique_ptr<krTools::MaterialCompiler> compiler; ///< holds the sources of the origins
};

/// What the current context draws.
[[nodiscard]] const Target& drawnTarget();

/// Reads the sources of a material and of the scene's lights and compiles them. Throws a krTools::FileError.
/// @param name    FILE or FILE:NAME
/// @param files   the files that includes may come from are appended, whether or not they exist
/// @param output  gets the errors
/// @return  nothing when there are errors
[[nodiscard]] std::optional<Material> compileMaterial(const Scene& scene, const std::string& name, const Target& target,
                                                      std::vector<std::string>& files, krTools::MessageOutput& output);
