#pragma once
#include "ProgramGenerator.h"

#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <string>
#include <vector>

/// A source and what each target makes of it.
struct CompiledSource
{
    std::vector<krFrontend::Program> programs; ///< in the order of targets(); fewer where there are problems
    std::string problems;                      ///< what the front end says against the source, a line each
};

/// Compiles the first material of a source with all its lights, for every target.
[[nodiscard]] CompiledSource compileSource(const std::string& source);

/// What a target's own compiler says against a program; empty when nothing.
[[nodiscard]] std::string targetFaults(const Target& target, const krFrontend::Program& program);

/// Everything that is wrong with a source that ought to be right, with its programs; empty when nothing is.
[[nodiscard]] std::string faultsOf(const std::string& source);
