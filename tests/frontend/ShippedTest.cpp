#include "shadergen/Scenes.h"

#include <krender/frontend/Interface.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

class FullSource : public testing::TestWithParam<std::string>
{
};

// A viewer shows a named slider, colour or field for each uniform of a source in full KRSL, and draws before any is set.
TEST_P(FullSource, HasNoWarningsAndDescribesItsUniforms)
{
    const krFrontend::Module module = krFrontend::Module::readFile(KRENDER_SHARE "/" + GetParam() + ".krs");
    for (const krFrontend::Diagnostic& found : module.diagnostics())
        ADD_FAILURE() << found.text;
    for (const krFrontend::ShaderInterface& shader : krFrontend::interfaceOf(module))
        for (const krFrontend::InputInterface& input : shader.arguments)
        {
            if (shader.kind == krFrontend::ShaderKind::Function || input.frequencies != krShadingDag::kUniformRange)
                continue;
            EXPECT_TRUE(input.defaultValue.isSet() || isSampler(input.type)) << input.name;
            EXPECT_TRUE(std::any_of(input.metadata.begin(), input.metadata.end(),
                                    [](const auto& item) { return item.name == "label"; }))
                << input.name;
        }
}

std::vector<std::string> fullSources()
{
    std::vector<std::string> sources;
    for (const std::string folder : {"materials", "lights", "include"})
        for (const std::string& name : scenes::fullNamesIn(folder))
            sources.push_back(folder + "/" + name);
    return sources;
}

INSTANTIATE_TEST_SUITE_P(Shipped, FullSource, testing::ValuesIn(fullSources()),
                         [](const auto& test)
                         {
                             std::string name = test.param;
                             std::replace(name.begin(), name.end(), '/', '_');
                             return name;
                         });

} // namespace
