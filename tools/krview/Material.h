#pragma once
#include "Scene.h"

#include <common/Source.h>

#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/DataType.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
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

/// A material with the lights of a scene, compiled to GLSL.
struct Material
{
    /// A place in a source.
    struct Origin
    {
        const krFrontend::SourceFile* file = nullptr; ///< null: nowhere
        std::size_t position = 0;                     ///< byte index into the file
    };

    /// Where a line of the fragment program came from; nowhere for a line that the compiler made up, or when the
    /// material was read as plain KRSL.
    /// @param line  from 1
    [[nodiscard]] Origin origin(std::size_t line) const;

    std::string name;
    krTools::Source vertexProgram; ///< with the preamble, like the other one
    krTools::Source fragmentProgram;
    std::vector<ProgramInput> inputs; ///< the material's first
    bool isChecked = false;           ///< whether the front end has checked the sources: the programs are then valid
    std::vector<krFrontend::LineOrigin> fragmentOrigins;
    std::map<std::string, krFrontend::Module> modules; ///< of the origins, by their paths
};

/// What programs are written for.
[[nodiscard]] const Target& glslTarget();

/// A program with what GLSL 1.20 needs ahead of it.
[[nodiscard]] krTools::Source programSource(const char* name, std::string_view program);

/// Whether the larger program of a material is small enough for a driver. If not, that is printed.
[[nodiscard]] bool checkSize(const std::string& material, std::size_t bytes);

/// Reads the sources of a scene as full KRSL and compiles them. Errors are printed. Throws a krTools::FileError.
/// @param files  the files that includes may come from are appended, whether or not they exist
/// @return  nothing when there are errors
[[nodiscard]] std::optional<Material> compileMaterial(const Scene& scene, std::vector<std::string>& files);
