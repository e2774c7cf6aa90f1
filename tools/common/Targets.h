#pragma once
#include <common/Messages.h>

#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <optional>
#include <string>
#include <vector>

namespace krTools
{

/// A target to write programs for.
struct TargetChoice
{
    const Target* target;
    bool isNamed = true; ///< and not one of "all", of which those are left out that cannot be
};

/// Whether this build has krender-targets.
[[nodiscard]] bool canTranslate() noexcept;

/// The names of all targets, between commas.
[[nodiscard]] std::string targetNames();

/// Adds the targets of a list such as "glsl,cg", each once; "all" stands for all of them. Throws a UsageError.
void addTargets(const std::string& list, std::vector<TargetChoice>& choices);

/// Takes out of the choices, with a note, what "all" stands for and this build or the way of reading cannot do; throws a
/// UsageError for what was named.
/// @param keepsIlluminance  whether illuminance blocks stay in the programs
void settleTargets(std::vector<TargetChoice>& choices, bool asPlain, bool keepsIlluminance, Messages& messages);

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
    std::optional<krTargets::SpirvProgram> fBinary;
    bool fIsFaulty = false;
};

} // namespace krTools
