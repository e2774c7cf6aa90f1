// A material with 1, 4 and 16 lights compiled to each target, beside the plain form: clone the material, splice the lights
// into the tree, print it. The plain form writes only what depends on material and lights and leaves the rest out.
#include "PlainSplicer.h"
#include "RatioReporter.h"
#include "shadergen/Scenes.h"

#include <krender/shading/Statement.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

struct Target
{
    const char* name;
    scenes::Compile compiler;
    const SplicerTarget& words;
};

constexpr Target kTargets[] = {{"Cg", compileMaterialToCg, kSplicerCg}, {"GLSL", compileMaterialToGlsl, kSplicerGlsl}};

std::vector<LightSpec> lights(std::int64_t count)
{
    std::vector<LightSpec> all;
    for (std::int64_t i = 0; i < count; ++i)
        all.push_back({scenes::lightFunction("spotLight"), ("light" + std::to_string(i)).c_str()});
    return all;
}

krString::CString aliasesOf(const std::string& program)
{
    const std::size_t begin = program.find("\t// GLOBAL AND ALIASED VARIABLES");
    const std::size_t end = program.find("\n\n", begin);
    return krShadingDag::indent(krString::CString(program.substr(begin, end + 1 - begin)), "");
}

/// Ends the program unless both forms write the same.
void requireSameText(const Target& target, const krShadingDag::ShadingNodeSpec& material)
{
    const std::vector<LightSpec> four = lights(4);
    const std::string program = scenes::compile(target.compiler, material, &four).fragment;
    const SplicedFragment fragment = spliceLights(target.words, material, four, aliasesOf(program));
    if (program.find(fragment.lightUniforms.asChar()) != std::string::npos && program.ends_with(fragment.body.asChar()))
        return;
    std::fprintf(stderr, "compile_benchmark: the forms differ for %s\n", target.name);
    std::exit(1);
}

void registerTarget(const Target& target, const krShadingDag::ShadingNodeSpec& material)
{
    for (const int count : {1, 4, 16})
    {
        const std::string group = std::string(target.name) + " " + std::to_string(count) + "/";
        const auto whole = [&target, &material, count](benchmark::State& state)
        {
            const std::vector<LightSpec> given = lights(count);
            krString::CString vertex;
            krString::CString fragment;
            for (auto _ : state)
                target.compiler(material, &given, vertex, fragment);
            state.SetBytesProcessed(state.iterations() * (vertex.length() + fragment.length()));
            state.counters["per light"] =
                benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
        };
        const auto splice = [&target, &material, count](benchmark::State& state)
        {
            const std::vector<LightSpec> given = lights(count);
            const krString::CString aliases = aliasesOf(scenes::compile(target.compiler, material, &given).fragment);
            for (auto _ : state)
                benchmark::DoNotOptimize(spliceLights(target.words, material, given, aliases));
        };
        benchmark::RegisterBenchmark((group + "krender").c_str(), whole)->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark((group + "clone and splice").c_str(), splice)->Unit(benchmark::kMicrosecond);
    }
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const scenes::Spec material = scenes::parseMaterial("phong");
    for (const Target& target : kTargets)
    {
        requireSameText(target, *material);
        registerTarget(target, *material);
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
}
