#include "shadergen/Scenes.h"

#include <krender/frontend/PlainReading.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace
{

using krFrontend::Module;

class ShippedMaterial : public testing::TestWithParam<std::string>
{
};

scenes::Compile compilerOf(const Target& target)
{
    return target.language == TargetLanguage::Cg ? scenes::Compile(compileMaterialToCg)
                                                 : scenes::Compile(compileMaterialToGlsl);
}

TEST_P(ShippedMaterial, CompilesToTheSameBytesByBothRoads)
{
    const std::string path = KRENDER_SHARE "/materials/" + GetParam() + ".krs";
    const Module module = Module::readFile(path);
    const Module library = Module::readFile(KRENDER_SHARE "/stdlib.krs");
    ASSERT_TRUE(module.diagnostics().empty());
    ASSERT_TRUE(library.diagnostics().empty());
    EXPECT_TRUE(krFrontend::plainDifferences(module).empty());
    EXPECT_TRUE(krFrontend::plainDifferences(library).empty());

    const scenes::Spec material = scenes::parseMaterial(GetParam());
    // The front end declares the uniforms of lights once, which a material of several blocks would show.
    for (const unsigned count : GetParam() == "lacquer" ? std::vector{0u} : std::vector{0u, 1u, 3u})
        for (const Target& target : scenes::plainTargets())
        {
            const std::vector<LightSpec> lights = scenes::lightsFor(GetParam(), count);
            krFrontend::ProgramRequest request{&module, "", {}, false};
            for (const LightSpec& light : lights)
                request.lights.push_back(
                    {&library, std::string(light.spec->name().view()), std::string(light.name.view())});
            std::vector<krFrontend::ProgramDiagnostic> problems;
            const std::optional<krFrontend::Program> full = krFrontend::compileProgram(request, target, problems);
            const scenes::Programs plain = scenes::compile(compilerOf(target), *material, &lights);
            ASSERT_TRUE(full && problems.empty());
            EXPECT_EQ(full->vertex, plain.vertex) << target.name;
            EXPECT_EQ(full->fragment, plain.fragment) << target.name;
        }
}

INSTANTIATE_TEST_SUITE_P(Materials, ShippedMaterial, testing::ValuesIn(scenes::materialNames()),
                         [](const auto& given) { return given.param; });

} // namespace
