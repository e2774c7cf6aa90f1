#include "Canvas.h"
#include "FrontEnds.h"
#include "Scenes.h"

#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shadergen/Target.h>

#include <krender/frontend/Program.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
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

/// The pixels in which two pictures differ by more than rounding does.
long differentPixels(const Pixels& a, const Pixels& b)
{
    long count = 0;
    for (std::size_t i = 0; i < a.size(); i += 4)
        count += std::equal(&a[i], &a[i] + 4, &b[i], [](int x, int y) { return std::abs(x - y) <= 2; }) ? 0 : 1;
    return count;
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

class DrawnFullMaterial : public testing::TestWithParam<std::string>
{
};

// A step in a material magnifies the last bit, in which the targets may differ.
TEST_P(DrawnFullMaterial, LooksTheSameInBothTargets)
{
    const auto shipped = [](const std::string& file) { return krFrontend::Module::readFile(KRENDER_SHARE "/" + file); };
    const krFrontend::Module material = shipped("materials/" + GetParam() + ".krs");
    const krFrontend::Module library = shipped("stdlib.krs");
    const krFrontend::ProgramRequest request{
        &material, "", {{&library, "pointLight", "key"}, {&library, "ambientLight", "room"}}, false};
    Canvas canvas;
    std::vector<Pixels> pictures;
    for (const Target& target : scenes::plainTargets())
    {
        std::vector<krFrontend::ProgramDiagnostic> problems;
        const auto program = krFrontend::compileProgram(request, target, problems);
        ASSERT_TRUE(program) << target.name;
        const std::string preamble(target.preamble);
        pictures.push_back(
            canvas.draw(target.language == TargetLanguage::Cg
                            ? frontends::cgAsGlsl({program->vertex, program->fragment})
                            : scenes::Programs{preamble + program->vertex, preamble + program->fragment}));
    }
    EXPECT_LE(differentPixels(pictures.front(), pictures.back()), Canvas::kSize * Canvas::kSize / 200);
}

INSTANTIATE_TEST_SUITE_P(Shipped, DrawnFullMaterial, testing::ValuesIn(scenes::fullNamesIn("materials")),
                         [](const auto& test) { return test.param; });
