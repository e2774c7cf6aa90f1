#pragma once
#include <krender/frontend/Interface.h>

#include <krender/Export.h>
#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>
#include <krender/shadergen/Target.h>

#include <optional>
#include <string>
#include <vector>

namespace krFrontend
{

/// One light that shines on a material.
struct LightUse
{
    const Module* module = nullptr; ///< borrowed
    std::string function;
    std::string key; ///< the light's own name, ahead of its uniforms' names; a word
};

/// What is compiled.
struct ProgramRequest
{
    const Module* module = nullptr; ///< of the material; borrowed
    std::string material;           ///< empty: the module's first one
    std::vector<LightUse> lights;   ///< in the order in which they run
    bool keepIlluminance = false;   ///< leaves the illuminance blocks as they are, for somebody else to replace
};

/// A diagnostic with the module whose sources its ranges count in.
struct ProgramDiagnostic
{
    const Module* module = nullptr; ///< null: it has no place in a source
    Diagnostic diagnostic;
};

/// Where a line of a program came from.
struct LineOrigin
{
    const Module* module = nullptr; ///< null: the line is the program's own
    Offset offset = 0;
};

/// What stands at the origin of a line, which has one: from its first word to the end of the source's line.
[[nodiscard]] KRENDER_EXPORT SourceRange lineRange(const LineOrigin& origin);

/// A material with its lights, written for a target.
struct Program
{
    std::string vertex;
    std::string fragment;
    std::vector<LineOrigin>
        fragmentOrigins; ///< of line n at n - 1; the lines behind the last one are the program's own
    ProgramInterface interface;
};

/// Writes a program. It throws nothing for a source.
/// @param problems  appended to; warnings and errors of the modules are not among them
/// @return  nothing where there are problems, or where a module that it needs has errors
[[nodiscard]] KRENDER_EXPORT std::optional<Program> compileProgram(const ProgramRequest& request, const Target& target,
                                                                   std::vector<ProgramDiagnostic>& problems);

} // namespace krFrontend
