#include "TargetPrograms.h"

#include <validation/GlslValidator.h>

#include <krender/frontend/Interface.h>

using krFrontend::Module;

Request requestOf(const std::string& source)
{
    Request made;
    made.modules.push_back(Module::readText("source.krs", source));
    for (const krFrontend::ShaderInterface& shader : interfaceOf(made.modules[0]))
        if (shader.kind == krFrontend::ShaderKind::Light && shader.hasBody)
            made.request.lights.push_back({nullptr, shader.name, shader.name});
    return made;
}

Request shippedRequest(const std::string& material, const std::string& light)
{
    Request made;
    for (const std::string& file : {"materials/" + material, std::string("stdlib"), "lights/" + light})
        made.modules.push_back(Module::readFile(KRENDER_SHARE "/" + file + ".krs"));
    made.request.lights = {{&made.modules[1], "pointLight", "key"}, {&made.modules[2], light + "Light", "other"}};
    return made;
}

TargetProgram compileFor(const Request& made, const Target& target)
{
    krFrontend::ProgramRequest request = made.request;
    request.module = &made.modules[0];
    for (krFrontend::LightUse& light : request.lights)
        light.module = made.modules.size() > 1 ? &made.modules[1 + (light.key == "other" ? 1 : 0)] : &made.modules[0];
    TargetProgram compiled;
    std::vector<krFrontend::ProgramDiagnostic> problems;
    if (auto program = compileProgram(request, target, problems))
        compiled.program = std::move(*program);
    for (const krFrontend::Diagnostic& found : made.modules[0].diagnostics())
        if (found.severity == krFrontend::Severity::Error)
            compiled.problems += found.text + "\n";
    if (problems.empty() && compiled.problems.empty() && target.isTranslated)
        if (const auto binary = krTargets::SpirvProgram::build(compiled.program, problems))
            compiled.translation = binary->translate(target, problems);
    for (const krFrontend::ProgramDiagnostic& problem : problems)
        compiled.problems += problem.diagnostic.text + "\n";
    return compiled;
}

std::string faultsOf(const TargetProgram& program, const Target& target)
{
    if (!krTools::canValidateGlsl(target))
        return "";
    const krTools::PairFindings findings = validateGlsl(target, krTools::Source("vertex", program.vertex()),
                                                        krTools::Source("fragment", program.fragment()));
    std::string text;
    for (const auto& [stage, source] :
         {std::pair(&findings.vertex, &program.vertex()), std::pair(&findings.fragment, &program.fragment())})
    {
        for (const krTools::Finding& finding : stage->kept())
            if (finding.severity == krFrontend::Severity::Error)
                text += finding.text + "\n";
        if (stage->hasErrors())
            text += *source;
    }
    for (const std::string& error : findings.pair)
        text += error + "\n";
    return text;
}

std::vector<const Target*> vulkanTargets()
{
    std::vector<const Target*> found;
    for (const Target& target : targets())
        if (target.language == TargetLanguage::VulkanGlsl)
            found.push_back(&target);
    return found;
}
