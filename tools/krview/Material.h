#pragma once
#include "Scene.h"

#include <common/MaterialCompiler.h>
#include <common/Source.h>

#include <krender/frontend/Program.h>
#include <krender/shading/DataType.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// An input of the programs that krview sets.
struct ProgramInput
{
    std::string name; ///< in scenes and messages: the one in the source, behind the key of its light
    std::string programName;
    DataType type;
    bool perVertex;                         ///< an attribute; else a uniform
    std::string lightName;                  ///< its name in the light's source; empty for an input of the material
    std::optional<InputValue> defaultValue; ///< as its source gives it
};

/// A material with the lights of a scene, compiled to the GLSL of the context.
struct Material
{
    /// Where a line of the fragment program came from; nowhere for a line that the compiler made up, or when the
    /// material was read as plain KRSL.
    /// @param line  from 1
    [[nodiscard]] krFrontend::LineOrigin origin(std::size_t line) const;

    std::string name;
    krTools::Source vertexProgram; ///< with the preamble, like the other one
    krTools::Source fragmentProgram;
    std::vector<ProgramInput> inputs;       ///< the material's first
    krFrontend::ProgramInterface interface; ///< of the programs
    bool isChecked = false;        ///< whether the front end has checked the sources: the programs are then valid
    std::size_t preambleLines = 0; ///< ahead of the lines of the origins
    std::vector<krFrontend::LineOrigin> fragmentOrigins;
    std::unique_ptr<krTools::MaterialCompiler> compiler; ///< holds the sources of the origins
};

/// Reads the sources of a scene and compiles them for the current context. Errors are printed. Throws a
/// krTools::FileError.
/// @param files  the files that includes may come from are appended, whether or not they exist
/// @return  nothing when there are errors
[[nodiscard]] std::optional<Material> compileMaterial(const Scene& scene, std::vector<std::string>& files);
