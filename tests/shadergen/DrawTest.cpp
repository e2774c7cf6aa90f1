#include "Canvas.h"
#include "FrontEnds.h"
#include "Scenes.h"

#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shadergen/Target.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

using Pixels = std::vector<std::uint8_t>;

namespace
{

int largestDifference(const Pixels& a, const Pixels& b)
{
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

class DrawnMaterial : public testing::TestWithParam<std::string>
{
protected:
    Pixels drawGlsl()
    {
        scenes::Programs programs = scenes::compileShipped(compileMaterialToGlsl, GetParam(), 3);
        programs.vertex.insert(0, findTarget("glsl")->preamble);
        programs.fragment.insert(0, findTarget("glsl")->preamble);
        return fCanvas.draw(programs);
    }

    /// Draws the Cg programs, with an edit to one of them unless it is empty.
    Pixels drawCg(std::string scenes::Programs::*program = &scenes::Programs::vertex, const std::string& from = "",
                  const std::string& to = "")
    {
        scenes::Programs programs = scenes::compileShipped(compileMaterialToCg, GetParam(), 3);
        EXPECT_TRUE(scenes::replaceFirst(programs.*program, from, to)) << from;
        return fCanvas.draw(frontends::cgAsGlsl(programs));
    }

private:
    Canvas fCanvas;
};

INSTANTIATE_TEST_SUITE_P(Shipped, DrawnMaterial, testing::ValuesIn(scenes::materialNames()),
                         [](const auto& test) { return test.param; });

} // namespace

TEST_P(DrawnMaterial, LooksTheSameInBothTargets)
{
    const Pixels glsl = drawGlsl();
    const auto lit = std::count_if(glsl.begin(), glsl.end(), [](std::uint8_t value) { return value > 30; });
    EXPECT_GT(lit, static_cast<long>(glsl.size()) / 8) << "next to nothing was drawn";
    EXPECT_LE(largestDifference(glsl, drawCg()), 1);
}

TEST_P(DrawnMaterial, ShowsADifferenceBetweenTheTargets)
{
    const Pixels glsl = drawGlsl();
    EXPECT_GT(
        largestDifference(glsl, drawCg(&scenes::Programs::fragment, "outRGBA = float4(", "outRGBA = 0.98 * float4(")),
        1);
    EXPECT_GT(
        largestDifference(glsl, drawCg(&scenes::Programs::vertex, "OUT.gWorldNormal = mul(objToWorldMatrix_invtrans",
                                       "OUT.gWorldNormal = mul(objToWorldMatrix")),
        1);
}
