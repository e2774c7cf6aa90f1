#include "GeneratedPrograms.h"

#include "shadergen/FrontEnds.h"

#include <algorithm>
#include <cstdlib>
#include <map>

namespace
{

std::string describe(const krFrontend::Module& module, const krFrontend::Diagnostic& diagnostic)
{
    const krFrontend::SourceLocation at = module.sources().location(diagnostic.range.begin);
    return std::string(at.file) + ":" + std::to_string(at.line) + ":" + std::to_string(at.column) + " " +
           std::string(diagnostic.name) + ": " + diagnostic.text + "\n";
}

/// Has the one file that generated sources include.
class IncludedFile final : public krFrontend::SourceReader
{
public:
    explicit IncludedFile(const std::string& text) : fText(text) {}

    std::string read(const std::string&, std::size_t, std::string& text) override
    {
        text = fText;
        return "";
    }
    bool exists(const std::string& path) override { return path == kIncludedName; }

private:
    const std::string& fText;
};

/// The part of the pixels that differ by more than two levels.
double difference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b)
{
    unsigned differing = 0;
    for (std::size_t i = 0; i < a.size(); i += 4)
        differing +=
            std::abs(a[i] - b[i]) > 2 || std::abs(a[i + 1] - b[i + 1]) > 2 || std::abs(a[i + 2] - b[i + 2]) > 2;
    return differing / (static_cast<double>(a.size()) / 4);
}

/// The names that a target's program has for what the writer named otherwise.
std::map<std::string, std::string> namesOf(const krFrontend::ProgramInterface& interface)
{
    std::map<std::string, std::string> names;
    for (const krFrontend::UniformInterface& uniform : interface.uniforms)
        names[uniform.programName] = uniform.light + uniform.name;
    for (const krFrontend::VertexInputInterface& input : interface.vertexInputs)
        names[input.programName] = input.name;
    return names;
}

/// The picture that a target's program draws; empty where the decompiler has no GLSL 1.20 for it, as for some bools.
std::vector<std::uint8_t> drawn(Canvas& canvas, const Target& target, const krFrontend::Program& program)
{
    scenes::Programs programs{program.vertex, program.fragment};
    if (target.language == TargetLanguage::Cg)
        programs = frontends::cgAsGlsl(programs);
    else
    {
        programs.vertex.insert(0, target.preamble);
        programs.fragment.insert(0, target.preamble);
    }
    if (programs.fragment.empty())
        return {};
    return canvas.draw(programs, namesOf(program.interface));
}

} // namespace

CompiledSource compileSource(const GeneratedProgram& sources)
{
    CompiledSource compiled;
    IncludedFile reader(sources.included);
    const krFrontend::ReadOptions options{{}, &reader};
    const krFrontend::Module module = krFrontend::Module::readText("generated.krs", sources.source, options);
    const krFrontend::Module lights = krFrontend::Module::readText("lights.krs", sources.lights, options);
    krFrontend::ProgramRequest request{&module, "", {}, false};
    for (const krFrontend::Module* read : {&module, &lights})
    {
        for (const krFrontend::Diagnostic& diagnostic : read->diagnostics())
            if (diagnostic.severity == krFrontend::Severity::Error)
                compiled.problems += describe(*read, diagnostic);
        if (read->hasErrors())
            return compiled;
        for (const krFrontend::ShaderInterface& shader : krFrontend::interfaceOf(*read))
            if (shader.kind == krFrontend::ShaderKind::Light && shader.hasBody)
                request.lights.push_back({read, shader.name, shader.name});
    }
    if (!request.lights.empty()) // a light may shine twice, with uniforms of its own each time
        request.lights.push_back({request.lights[0].module, request.lights[0].function, "again"});
    for (const Target& target : scenes::plainTargets())
    {
        std::vector<krFrontend::ProgramDiagnostic> problems;
        if (auto program = krFrontend::compileProgram(request, target, problems))
            compiled.programs.push_back(std::move(*program));
        for (const krFrontend::ProgramDiagnostic& problem : problems)
            compiled.problems += std::string(target.name) + " " + describe(*problem.module, problem.diagnostic);
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

std::string faultsOf(const GeneratedProgram& sources)
{
    const CompiledSource compiled = compileSource(sources);
    if (!compiled.problems.empty())
        return compiled.problems;
    std::string all;
    for (std::size_t i = 0; i < compiled.programs.size(); ++i)
        if (const std::string faults = targetFaults(targets()[i], compiled.programs[i]); !faults.empty())
            all += std::string(targets()[i].name) + ": " + faults + compiled.programs[i].fragment;
    return all;
}

std::string textsOf(const CompiledSource& compiled)
{
    std::string all;
    for (const krFrontend::Program& program : compiled.programs)
        all += program.fragment;
    return all;
}

double pictureDifference(Canvas& canvas, const CompiledSource& compiled)
{
    double largest = 0.0;
    std::vector<std::uint8_t> first;
    for (std::size_t i = 0; i < compiled.programs.size(); ++i)
    {
        const std::vector<std::uint8_t> picture = drawn(canvas, targets()[i], compiled.programs[i]);
        if (picture.empty())
            return -1.0;
        if (i == 0)
            first = picture;
        largest = std::max(largest, difference(first, picture));
    }
    return largest;
}
