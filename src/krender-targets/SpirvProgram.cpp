#include <krender-targets/SpirvProgram.h>

#include "krender-targets/private/DeepStack.h"
#include "krender-targets/private/GlslCompiler.h"
#include "krender-targets/private/Translator.h"
#include <krender/frontend/Interface.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <exception>
#include <new>
#include <utility>

namespace krTargets
{
namespace
{

using krFrontend::Program;
using krFrontend::ProgramDiagnostic;

ProgramDiagnostic diagnosticOf(const Fault& fault, const Program& program)
{
    ProgramDiagnostic found;
    found.diagnostic.text = "this is a fault of krender's: " + fault.text;
    if (fault.line == 0)
        return found;
    found.diagnostic.text +=
        ", in line " + std::to_string(fault.line) + (fault.isFragment ? " of the fragment" : " of the vertex") + " program";
    if (fault.isFragment && fault.line <= program.fragmentOrigins.size())
        if (const krFrontend::LineOrigin& origin = program.fragmentOrigins[fault.line - 1]; origin.module)
        {
            found.module = origin.module;
            found.diagnostic.range = lineRange(origin);
        }
    return found;
}

} // namespace

struct SpirvProgram::Contents
{
    Binaries code;
    krFrontend::ProgramInterface interface;
};

std::optional<SpirvProgram> SpirvProgram::build(const Program& program, std::vector<ProgramDiagnostic>& faults)
{
    if (program.vertex.size() > kMostCompiledBytes || program.fragment.size() > kMostCompiledBytes)
    {
        faults.emplace_back().diagnostic.text = "a program of more than 1 MB is not translated";
        return std::nullopt;
    }
    std::vector<Fault> found;
    auto contents = std::make_unique<Contents>();
    onDeepStack([&] { contents->code = compileGlsl(program.vertex, program.fragment, found); });
    for (const Fault& fault : found)
        faults.push_back(diagnosticOf(fault, program));
    if (!found.empty())
        return std::nullopt;
    contents->interface = program.interface;
    return SpirvProgram(std::move(contents));
}

std::optional<Translation> SpirvProgram::translate(const Target& target, std::vector<ProgramDiagnostic>& faults) const
{
    ProgramDiagnostic fault;
    try
    {
        std::optional<Translation> translation;
        onDeepStack([&] { translation = translateCode(fContents->code, fContents->interface, target); });
        return translation;
    }
    catch (const std::bad_alloc&)
    {
        throw;
    }
    catch (const std::exception& error)
    {
        fault.diagnostic.text =
            "this is a fault of krender's: no " + std::string(target.name) + " can be made: " + error.what();
    }
    faults.push_back(std::move(fault));
    return std::nullopt;
}

SpirvProgram::SpirvProgram(std::unique_ptr<Contents> contents) noexcept : fContents(std::move(contents)) {}
SpirvProgram::SpirvProgram(SpirvProgram&&) noexcept = default;
SpirvProgram& SpirvProgram::operator=(SpirvProgram&&) noexcept = default;
SpirvProgram::~SpirvProgram() = default;

std::span<const std::uint32_t> SpirvProgram::vertexCode() const noexcept { return fContents->code.vertex; }
std::span<const std::uint32_t> SpirvProgram::fragmentCode() const noexcept { return fContents->code.fragment; }

} // namespace krTargets
