// A material with four lights for all targets that it can be written for: the first time in the process, and then again
// and again, whole and by its parts.
#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

using krFrontend::Module;
using krFrontend::Program;
using Problems = std::vector<krFrontend::ProgramDiagnostic>;

namespace
{

/// A shipped material with the lights of the standard library.
class Material
{
public:
    explicit Material(const std::string& name) : fModule(Module::readFile(KRENDER_SHARE "/materials/" + name + ".krs"))
    {
        fRequest.module = &fModule;
        for (const char* light : {"pointLight", "directionalLight", "spotLight", "ambientLight"})
            fRequest.lights.push_back({&fLibrary, light, light});
    }
    Material(const Material&) = delete;
    Material& operator=(const Material&) = delete;

    [[nodiscard]] std::optional<Program> compile(const Target& target) const
    {
        Problems problems;
        return compileProgram(fRequest, target, problems);
    }

private:
    Module fModule;
    Module fLibrary = Module::readFile(KRENDER_SHARE "/stdlib.krs");
    krFrontend::ProgramRequest fRequest;
};

krTargets::SpirvProgram build(const Program& program)
{
    Problems faults;
    std::optional<krTargets::SpirvProgram> built = krTargets::SpirvProgram::build(program, faults);
    if (built)
        return std::move(*built);
    std::fprintf(stderr, "targets_benchmark: a program has faults\n");
    std::exit(1);
}

/// Everything that krslc does for --target all, but to read and to write files.
void compileAll(const Material& material)
{
    std::optional<krTargets::SpirvProgram> binary;
    for (const Target& target : targets())
    {
        const std::optional<Program> program = material.compile(target);
        if (!program || !target.isTranslated)
            continue;
        if (!binary)
            binary = build(*program);
        Problems faults;
        benchmark::DoNotOptimize(binary->translate(target, faults));
    }
}

void registerMaterial(const std::string& name)
{
    benchmark::RegisterBenchmark((name + ", all targets").c_str(),
                                 [name](benchmark::State& state)
                                 {
                                     const Material material(name);
                                     for (auto _ : state)
                                         compileAll(material);
                                 })
        ->MeasureProcessCPUTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + ", text to SPIR-V").c_str(),
                                 [name](benchmark::State& state)
                                 {
                                     const std::optional<Program> program =
                                         Material(name).compile(*findTarget("spirv"));
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(build(*program));
                                 })
        ->MeasureProcessCPUTime()
        ->Unit(benchmark::kMillisecond);
    for (const Target& target : targets())
        if (target.isTranslated)
            benchmark::RegisterBenchmark((name + ", SPIR-V to " + std::string(target.name)).c_str(),
                                         [name, &target](benchmark::State& state)
                                         {
                                             const auto binary = build(*Material(name).compile(*findTarget("spirv")));
                                             for (auto _ : state)
                                             {
                                                 Problems faults;
                                                 benchmark::DoNotOptimize(binary.translate(target, faults));
                                             }
                                         })
                ->MeasureProcessCPUTime()
                ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv)
{
    const auto begin = std::chrono::steady_clock::now();
    compileAll(Material("wood"));
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - begin;
    std::printf("wood, all targets, the first time in the process: %.1f ms\n", passed.count());
    for (const char* name : {"phong", "metalrough", "wood"})
        registerMaterial(name);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
