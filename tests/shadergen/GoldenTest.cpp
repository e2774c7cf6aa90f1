#include "Scenes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace
{

/// Rewriting the golden files is the update-goldens build target; it sets this variable.
bool isUpdating() { return std::getenv("KRENDER_UPDATE_GOLDENS") != nullptr; }

struct Golden
{
    std::string path;
    std::string text;
};

/// The programs of a material with each number of lights, each under the name of its golden file.
std::vector<Golden> goldens(const std::string& material)
{
    std::vector<Golden> all;
    for (const unsigned lights : {0u, 1u, 3u})
    {
        const std::string base = KRENDER_GOLDENS "/" + material + "-" + std::to_string(lights);
        const scenes::Programs cg = scenes::compileShipped(compileMaterialToCg, material, lights);
        const scenes::Programs glsl = scenes::compileShipped(compileMaterialToGlsl, material, lights);
        all.insert(all.end(), {{base + ".vert.cg", cg.vertex},
                               {base + ".frag.cg", cg.fragment},
                               {base + ".vert", glsl.vertex},
                               {base + ".frag", glsl.fragment}});
    }
    return all;
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

INSTANTIATE_TEST_SUITE_P(Shipped, GoldenPrograms, testing::ValuesIn(scenes::materialNames()),
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
    for (const std::string& material : scenes::materialNames())
        for (const Golden& golden : goldens(material))
            expected.insert(golden.path);
    for (const auto& entry : std::filesystem::directory_iterator(KRENDER_GOLDENS))
        EXPECT_EQ(expected.count(entry.path()), 1u) << entry.path() << " belongs to no material";
}
