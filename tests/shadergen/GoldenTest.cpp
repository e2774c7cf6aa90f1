#include "Scenes.h"

#include <krender/platform/String.h>
#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{

/// Rewriting the golden files is the update-goldens build target; it sets this variable.
bool isUpdating() { return std::getenv("KRENDER_UPDATE_GOLDENS") != nullptr; }

struct Golden
{
    std::string path;
    std::string text;
};

void append(std::vector<Golden>& all, const std::string& name, const krShadingDag::ShadingNodeSpec& material,
            const std::vector<LightSpec>* lights)
{
    const std::string base = KRENDER_GOLDENS "/" + name;
    const scenes::Programs cg = scenes::compile(compileMaterialToCg, material, lights);
    const scenes::Programs glsl = scenes::compile(compileMaterialToGlsl, material, lights);
    all.insert(all.end(), {{base + ".vert.cg", cg.vertex},
                           {base + ".frag.cg", cg.fragment},
                           {base + ".vert", glsl.vertex},
                           {base + ".frag", glsl.fragment}});
}

scenes::Spec parseCorner(const std::string& name)
{
    return scenes::parse(scenes::readFile(KRENDER_GOLDENS "/../corners/" + name + ".krs"));
}

/// The programs of a shipped material, or of a source in corners/, each under the name of its golden file.
std::vector<Golden> goldens(const std::string& name)
{
    std::vector<Golden> all;
    if (name == "inputs")
        append(all, name, *parseCorner(name), nullptr);
    else if (name == "nesting")
    {
        const scenes::Spec material = parseCorner(name);
        const scenes::Spec everything = parseCorner("lightWithEverything");
        const scenes::Spec lit = parseCorner("lightWithIlluminance");
        const scenes::Spec withoutBody = scenes::parse("light declared(uniform float a, out float3 o);");
        const std::vector<LightSpec> none;
        const std::vector<LightSpec> lights{
            {nullptr, "no"}, {everything.get(), "key"}, {withoutBody.get(), "empty"}, {lit.get(), "fill"}};
        append(all, "nesting-null", *material, nullptr);
        append(all, "nesting-0", *material, &none);
        append(all, "nesting-4", *material, &lights);
    }
    else
        for (const unsigned count : {0u, 1u, 3u})
        {
            const std::vector<LightSpec> lights = scenes::lightsFor(name, count);
            append(all, name + "-" + std::to_string(count), *scenes::parseMaterial(name), &lights);
        }
    return all;
}

std::vector<std::string> sourceNames()
{
    std::vector<std::string> names = scenes::materialNames();
    names.insert(names.end(), {"inputs", "nesting"});
    return names;
}

/// The first lines in which two texts differ, with their number.
std::string firstDifference(const std::string& expected, const std::string& actual)
{
    std::istringstream left(expected);
    std::istringstream right(actual);
    for (unsigned line = 1;; ++line)
    {
        std::string a;
        std::string b;
        const bool isInLeft = static_cast<bool>(std::getline(left, a));
        const bool isInRight = static_cast<bool>(std::getline(right, b));
        if (!isInLeft || !isInRight || a != b)
            return "line " + std::to_string(line) + "\n  golden: " + (isInLeft ? a : "(end)") +
                   "\n  now:    " + (isInRight ? b : "(end)");
    }
}

class GoldenPrograms : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P(Sources, GoldenPrograms, testing::ValuesIn(sourceNames()),
                         [](const auto& test) { return test.param; });

} // namespace

TEST_P(GoldenPrograms, HaveNotChanged)
{
    for (const Golden& golden : goldens(GetParam()))
    {
        if (isUpdating())
        {
            std::ofstream(golden.path, std::ios::binary) << golden.text;
            continue;
        }
        EXPECT_TRUE(std::filesystem::exists(golden.path)) << golden.path << " is missing";
        const std::string expected = scenes::readFile(golden.path);
        EXPECT_TRUE(golden.text == expected) << golden.path << ", " << firstDifference(expected, golden.text);
    }
}

TEST(GoldenFolder, HoldsNothingElse)
{
    std::set<std::string> expected;
    for (const std::string& name : sourceNames())
        for (const Golden& golden : goldens(name))
            expected.insert(golden.path);
    for (const auto& entry : std::filesystem::directory_iterator(KRENDER_GOLDENS))
        EXPECT_EQ(expected.count(entry.path()), 1u) << entry.path() << " belongs to no source";
}
