#pragma once
#include "frontend/ProgramGenerator.h"

#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <optional>
#include <string>
#include <vector>

/// A material with its lights, for one target after the other.
struct Request
{
    std::vector<krFrontend::Module> modules; ///< the material's, and those of lights
    krFrontend::ProgramRequest request;      ///< without its pointers to modules
    std::vector<std::size_t> lightModules;
};

/// The first material of a source with all of its lights.
[[nodiscard]] Request requestOf(const GeneratedProgram& sources);
/// A shipped material with a light of the library and one of a file of its own.
[[nodiscard]] Request shippedRequest(const std::string& material, const std::string& light);

/// The programs for a target, and what is translated from them where the target wants that.
struct TargetProgram
{
    krFrontend::Program program;
    std::optional<krTargets::Translation> translation;
    std::string problems; ///< of the front end and of krender-targets, a line each

    [[nodiscard]] const std::string& vertex() const { return translation ? translation->vertex : program.vertex; }
    [[nodiscard]] const std::string& fragment() const { return translation ? translation->fragment : program.fragment; }
};

[[nodiscard]] TargetProgram compileFor(const Request& request, const Target& target);

/// What the target's checker says against the programs, and the program that it says it of; empty when nothing, and where
/// there is no checker.
[[nodiscard]] std::string faultsOf(const TargetProgram& program, const Target& target);

/// The targets made of Vulkan GLSL.
[[nodiscard]] std::vector<const Target*> vulkanTargets();
