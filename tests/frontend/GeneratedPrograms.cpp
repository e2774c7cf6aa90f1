#include "GeneratedPrograms.h"

#include "shadergen/FrontEnds.h"

namespace
{

std::string describe(const krFrontend::Module& module, const krFrontend::Diagnostic& diagnostic)
{
    const krFrontend::SourceLocation at = module.sources().location(diagnostic.range.begin);
    return std::to_string(at.line) + ":" + std::to_string(at.column) + " " + std::string(diagnostic.name) + ": " +
           diagnostic.text + "\n";
}

} // namespace

CompiledSource compileSource(const std::string& source)
{
    CompiledSource compiled;
    const krFrontend::Module module = krFrontend::Module::readText("generated.krs", source);
    for (const krFrontend::Diagnostic& diagnostic : module.diagnostics())
        if (diagnostic.severity == krFrontend::Severity::Error)
            compiled.problems += describe(module, diagnostic);
    if (module.hasErrors())
        return compiled;
    krFrontend::ProgramRequest request{&module, "", {}, false};
    for (const krFrontend::ShaderInterface& shader : krFrontend::interfaceOf(module))
        if (shader.kind == krFrontend::ShaderKind::Light && shader.hasBody)
            request.lights.push_back({&module, shader.name, shader.name});
    for (const Target& target : targets())
    {
        std::vector<krFrontend::ProgramDiagnostic> problems;
        if (auto program = krFrontend::compileProgram(request, target, problems))
            compiled.programs.push_back(std::move(*program));
        for (const krFrontend::ProgramDiagnostic& problem : problems)
            compiled.problems += std::string(target.name) + " " + describe(module, problem.diagnostic);
    }
    return compiled;
}

std::string targetFaults(const Target& target, const krFrontend::Program& program)
{
    if (target.language == TargetLanguage::Cg)
        return frontends::cgFaults({program.vertex, program.fragment});
    const std::string names(target.preamble.substr(target.preamble.find('\n') + 1)); // the version is put ahead there
    return frontends::glslFaults({names + program.vertex, names + program.fragment});
}

std::string faultsOf(const std::string& source)
{
    const CompiledSource compiled = compileSource(source);
    if (!compiled.problems.empty())
        return compiled.problems;
    std::string all;
    for (std::size_t i = 0; i < compiled.programs.size(); ++i)
        if (const std::string faults = targetFaults(targets()[i], compiled.programs[i]); !faults.empty())
            all += std::string(targets()[i].name) + ": " + faults + compiled.programs[i].fragment;
    return all;
}
