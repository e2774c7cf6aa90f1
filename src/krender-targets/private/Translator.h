#pragma once
#include <krender-targets/SpirvProgram.h>

#include "krender-targets/private/GlslCompiler.h"
#include <krender/frontend/Interface.h>
#include <krender/shadergen/Target.h>

namespace krTargets
{

/// Translates code for a target. Throws what SPIRV-Cross throws, and std::runtime_error where a name did not survive.
[[nodiscard]] Translation translateCode(const Binaries& code, const krFrontend::ProgramInterface& interface,
                                        const Target& target);

} // namespace krTargets
