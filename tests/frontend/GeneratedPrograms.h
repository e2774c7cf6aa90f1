#pragma once
#include "ProgramGenerator.h"
#include "shadergen/Canvas.h"

#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <string>
#include <vector>

/// A source and what each target makes of it.
struct CompiledSource
{
    std::vector<krFrontend::Program>
        programs;         ///< in the order of scenes::plainTargets(); fewer where there are problems
    std::string problems; ///< what the front end says against the source, a line each
};

/// Compiles the first material of a source with all lights, for every target that plain KRSL has too.
[[nodiscard]] CompiledSource compileSource(const GeneratedProgram& sources);

/// What a target's own compiler says against a program; empty when nothing.
[[nodiscard]] std::string targetFaults(const Target& target, const krFrontend::Program& program);

/// Everything that is wrong with a source that ought to be right, with its programs; empty when nothing is.
[[nodiscard]] std::string faultsOf(const GeneratedProgram& sources);

/// The fragment programs, one behind the other, for messages.
[[nodiscard]] std::string textsOf(const CompiledSource& compiled);

/// The part of the pixels in which the targets' pictures differ by more than two levels, from 0 to 1; negative where a
/// picture cannot be drawn here. Throws std::runtime_error with the driver's messages.
[[nodiscard]] double pictureDifference(Canvas& canvas, const CompiledSource& compiled);

/// Pictures that differ no more count as the same: a step magnifies a last bit.
inline constexpr double kSamePicture = 0.005;
