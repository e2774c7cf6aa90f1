// Full KRSL from bytes to the checked tree: the shipped sources, and generated functions beside glslang, which reads the
// same ones in GLSL; the memory that it takes; and a material with four lights by the full and by the plain road.
#include "RatioReporter.h"
#include "shadergen/Scenes.h"
#include "shading/Peers.h"
#include "shading/SourceGenerator.h"

#include <krender/frontend/Module.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shadergen/Target.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <string>
#include <vector>

using krFrontend::Module;

namespace
{

constexpr std::size_t kMegabyte = 1'000'000;

void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "frontend_benchmark: %s\n", what);
    std::exit(1);
}

/// The shipped materials again and again, each time by other names.
std::string shippedSource(std::size_t bytes)
{
    std::string shipped;
    for (const std::string& name : scenes::materialNames())
        shipped += scenes::readFile(KRENDER_SHARE "/materials/" + name + ".krs");
    std::string all;
    for (unsigned i = 0; all.size() < bytes; ++i)
    {
        std::size_t at = all.size();
        all += shipped;
        for (; (at = all.find("\nmaterial ", at)) != std::string::npos; ++at)
            all.insert(at + 10, std::string("n").append(std::to_string(i)).append("x"));
    }
    return all;
}

/// Where a node of the tree has the fewest bytes.
std::string denseSource(std::size_t bytes)
{
    std::string all;
    for (unsigned i = 0; all.size() < bytes; ++i)
        all.append("int f").append(std::to_string(i)).append("(int a){}");
    return all;
}

void readModule(benchmark::State& state, const std::string& source)
{
    for (auto _ : state)
        require(Module::readText("benchmark.krs", source).errorCount() == 0, "the source has errors");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}

void parseWithPeer(benchmark::State& state, const std::string& source)
{
    for (auto _ : state)
        require(parseWithGlslang(source), "glslang rejected the source");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}

/// The most memory that the process has held since the last call, in bytes; it counts anew from now on.
std::size_t peakMemory()
{
    std::size_t peak = 0;
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "VmHWM:")
            status >> peak;
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
    return peak * 1024;
}

void printMemory(const char* name, const std::string& source)
{
    static_cast<void>(peakMemory());
    const std::size_t before = peakMemory();
    {
        const Module module = Module::readText("benchmark.krs", source);
        benchmark::DoNotOptimize(module.errorCount());
    }
    std::printf("memory of %s: %.1f times the source\n", name,
                static_cast<double>(peakMemory() - before) / static_cast<double>(source.size()));
}

/// The material with four lights, each road from what it has read.
void registerRoads(const Module& module, const Module& library, const krShadingDag::ShadingNodeSpec& material)
{
    for (const Target& target : targets())
    {
        const scenes::Compile compiler = target.name == "cg"     ? scenes::Compile(compileMaterialToCg)
                                         : target.name == "glsl" ? scenes::Compile(compileMaterialToGlsl)
                                                                 : nullptr;
        if (!compiler)
            continue;
        const auto full = [&module, &library, &target](benchmark::State& state)
        {
            krFrontend::ProgramRequest request{&module, "", {}, false};
            for (int i = 0; i < 4; ++i)
                request.lights.push_back({&library, "spotLight", std::string("light").append(std::to_string(i))});
            for (auto _ : state)
            {
                std::vector<krFrontend::ProgramDiagnostic> problems;
                require(krFrontend::compileProgram(request, target, problems).has_value(), "no program");
            }
        };
        const auto plain = [&material, compiler](benchmark::State& state)
        {
            std::vector<LightSpec> lights;
            for (int i = 0; i < 4; ++i)
                lights.push_back(
                    {scenes::lightFunction("spotLight"), std::string("light").append(std::to_string(i)).c_str()});
            krString::CString vertex;
            krString::CString fragment;
            for (auto _ : state)
                compiler(material, &lights, vertex, fragment);
        };
        const std::string group = "4 lights to " + std::string(target.name) + "/";
        benchmark::RegisterBenchmark((group + "krender, full").c_str(), full)->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark((group + "plain road").c_str(), plain)->Unit(benchmark::kMicrosecond);
    }
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const std::string shipped = shippedSource(10 * kMegabyte);
    const std::string ours = makeKrslSource(kMegabyte);
    const std::string theirs = makeGlslSource(kMegabyte);
    printMemory("the shipped sources", shipped);
    printMemory("the densest source", denseSource(kMegabyte));
    const auto registerOne = [](const char* name, auto function, const std::string& source)
    {
        benchmark::RegisterBenchmark(name, [function, &source](benchmark::State& state) { function(state, source); })
            ->Unit(benchmark::kMillisecond)
            ->MinTime(1);
    };
    registerOne("shipped/krender, 10 MB", readModule, shipped);
    registerOne("functions/krender", readModule, ours);
    registerOne("functions/glslang", parseWithPeer, theirs);
    const Module module = Module::readFile(KRENDER_SHARE "/materials/phong.krs");
    const Module library = Module::readFile(KRENDER_SHARE "/stdlib.krs");
    const scenes::Spec material = scenes::parseMaterial("phong");
    registerRoads(module, library, *material);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
}
