#pragma once
#include "CompileCommand.h"
#include "Report.h"

#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Program.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The names of all targets, between commas.
[[nodiscard]] std::string targetNames();

/// Adds the targets of a list such as "glsl,cg", each once; "all" stands for all of them. Throws a UsageError.
void addTargets(const std::string& list, std::vector<TargetChoice>& choices);

/// Takes out of the choices, with a note, what "all" stands for and this build or the other options cannot do; throws a
/// UsageError for what was named.
void settleTargets(CompileOptions& options, Report& report);

/// Makes the targets' own programs of a material's Vulkan GLSL, which is compiled once for all of them.
class TargetTranslator
{
public:
    /// @param faults  appended to
    /// @return  nothing where there are faults
    [[nodiscard]] std::optional<krTargets::Translation> translate(const Target& target,
                                                                  const krFrontend::Program& program,
                                                                  std::vector<krFrontend::ProgramDiagnostic>& faults);

private:
#ifdef KRENDER_HAS_TARGETS
    std::optional<krTargets::SpirvProgram> fBinary;
    bool fIsFaulty = false;
#endif
};
