#pragma once
#include <krender/platform/String.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

/// Sources and programs that the tests and benchmarks of the compilers share.
namespace scenes
{

using Spec = std::unique_ptr<krShadingDag::ShadingNodeSpec>;

/// The names of the materials in share/krender/materials that are plain KRSL, sorted: those that include nothing.
[[nodiscard]] std::vector<std::string> materialNames();
/// The names of the sources in a folder of share/krender that are full KRSL, sorted: those that include others.
[[nodiscard]] std::vector<std::string> fullNamesIn(const std::string& folder);

/// One function from a text; ends the program with the parser's message when it does not parse.
[[nodiscard]] Spec parse(const std::string& source);
[[nodiscard]] Spec parseMaterial(const std::string& name);
/// A light function of the shipped library, by its exact name.
[[nodiscard]] const krShadingDag::ShadingNodeSpec* lightFunction(const char* name);
/// 0, 1 or 3 lights that suit a shipped material.
[[nodiscard]] std::vector<LightSpec> lightsFor(const std::string& material, unsigned count);

/// The targets that plain KRSL can be compiled for as well.
[[nodiscard]] std::span<const Target> plainTargets();

struct Programs
{
    std::string vertex;
    std::string fragment;
};

using Compile = void (*)(const krShadingDag::ShadingNodeSpec&, const std::vector<LightSpec>*, krString::CString&,
                         krString::CString&);

/// Compiles with one of the two compilers.
[[nodiscard]] Programs compile(Compile compiler, const krShadingDag::ShadingNodeSpec& material,
                               const std::vector<LightSpec>* lights);
[[nodiscard]] Programs compileShipped(Compile compiler, const std::string& material, unsigned lightCount);

/// The whole file; empty when it cannot be read.
[[nodiscard]] std::string readFile(const std::string& path);

/// Replaces the first occurrence; false, and nothing changes, when there is none.
bool replaceFirst(std::string& text, const std::string& from, const std::string& to);

} // namespace scenes
