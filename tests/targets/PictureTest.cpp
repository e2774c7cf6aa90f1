// GLSL 3.30 and ESSL 3.00, drawn with what the interface tells and nothing else, beside GLSL 1.20.
#include "TargetPrograms.h"

#include "frontend/ProgramGenerator.h"
#include "shadergen/Canvas.h"
#include "shadergen/Scenes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace
{

using Pixels = std::vector<std::uint8_t>;

class Pictures : public testing::Test
{
protected:
    Canvas fOld;
    Canvas fCore{Canvas::Api::Core};
    Canvas fEmbedded{Canvas::Api::Embedded};

    /// The pictures of a material in GLSL 1.20, GLSL 3.30 and ESSL 3.00.
    std::vector<Pixels> draw(const Request& request)
    {
        std::vector<Pixels> pictures;
        const Target& glsl = *findTarget("glsl");
        const TargetProgram old = compileFor(request, glsl);
        EXPECT_EQ(old.problems, "");
        std::map<std::string, std::string> names;
        for (const krFrontend::UniformInterface& uniform : old.program.interface.uniforms)
            names[uniform.programName] = uniform.light + uniform.name;
        for (const krFrontend::VertexInputInterface& input : old.program.interface.vertexInputs)
            names[input.programName] = input.name;
        const std::string preamble(glsl.preamble);
        pictures.push_back(fOld.draw({preamble + old.vertex(), preamble + old.fragment()}, names));
        for (const auto& [name, canvas] : {std::pair("glsl330", &fCore), std::pair("essl300", &fEmbedded)})
        {
            const TargetProgram program = compileFor(request, *findTarget(name));
            EXPECT_EQ(program.problems, "") << name;
            pictures.push_back(canvas->draw({program.vertex(), program.fragment()}, program.program.interface));
        }
        return pictures;
    }
};

/// The part of the pixels that differ by more than one level.
double difference(const Pixels& a, const Pixels& b)
{
    unsigned differing = 0;
    for (std::size_t i = 0; i < a.size(); i += 4)
        for (std::size_t c = i; c < i + 4; ++c)
            if (std::abs(a[c] - b[c]) > 1)
            {
                ++differing;
                break;
            }
    return differing / (static_cast<double>(a.size()) / 4);
}

TEST_F(Pictures, OfShippedMaterialsDoNotDiffer)
{
    std::vector<std::string> materials = scenes::materialNames();
    for (const std::string& name : scenes::fullNamesIn("materials"))
        materials.push_back(name);
    for (const std::string& material : materials)
    {
        const std::vector<Pixels> pictures = draw(shippedRequest(material, "cone"));
        EXPECT_NE(std::count(pictures[0].begin(), pictures[0].end(), pictures[0][0]),
                  static_cast<long>(pictures[0].size()))
            << material << ": nothing was drawn";
        for (const Pixels& picture : pictures)
            EXPECT_EQ(difference(pictures[0], picture), 0.0) << material;
    }
}

TEST_F(Pictures, OfGeneratedProgramsHardlyDiffer)
{
#ifdef __SANITIZE_ADDRESS__
    constexpr unsigned kPictures = 3;
#else
    constexpr unsigned kPictures = 25;
#endif
    for (unsigned seed = 1; seed <= kPictures; ++seed)
    {
        const std::string source = generateProgram(seed, true).source;
        const std::vector<Pixels> pictures = draw(requestOf(source));
        for (const Pixels& picture : pictures)
            EXPECT_LE(difference(pictures[0], picture), 0.005) << "seed " << seed << "\n" << source;
    }
}

} // namespace
