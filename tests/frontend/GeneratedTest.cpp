// Random programs, whose seed, source and program a failure shows. KRENDER_PROGRAMS says how many there are, and
// KRENDER_FIRST_PROGRAM with which seed they begin.
#include "GeneratedPrograms.h"

#include "shadergen/Canvas.h"
#include "shadergen/FrontEnds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace
{

#ifdef __SANITIZE_ADDRESS__
constexpr unsigned kPrograms = 100;
constexpr unsigned kPictures = 5;
#else
constexpr unsigned kPrograms = 500;
constexpr unsigned kPictures = 40;
#endif

unsigned numberFrom(const char* variable, unsigned otherwise)
{
    const char* text = std::getenv(variable);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

const unsigned kFirst = numberFrom("KRENDER_FIRST_PROGRAM", 1);

TEST(GeneratedPrograms, AreAcceptedByTheFrontEndAndByEveryTarget)
{
    unsigned failures = 0;
    for (unsigned seed = kFirst; seed < kFirst + numberFrom("KRENDER_PROGRAMS", kPrograms) && failures < 200; ++seed)
    {
        const GeneratedProgram program = generateProgram(seed, false);
        const std::string faults = faultsOf(program.source);
        failures += !faults.empty();
        EXPECT_TRUE(faults.empty()) << "seed " << seed << "\n" << faults << program.source;
    }
}

/// The part of the pixels that differ by more than two levels.
double difference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b)
{
    unsigned differing = 0;
    for (std::size_t i = 0; i < a.size(); i += 4)
        differing += std::abs(a[i] - b[i]) > 2 || std::abs(a[i + 1] - b[i + 1]) > 2 || std::abs(a[i + 2] - b[i + 2]) > 2;
    return differing / (static_cast<double>(a.size()) / 4);
}

/// The names that a target's program has for what the writer named otherwise.
std::map<std::string, std::string> namesOf(const krFrontend::ProgramInterface& interface)
{
    std::map<std::string, std::string> names;
    for (const krFrontend::UniformInterface& uniform : interface.uniforms)
        names[uniform.programName] = uniform.light + uniform.name;
    for (const krFrontend::VertexInputInterface& input : interface.vertexInputs)
        names[input.programName] = input.name;
    return names;
}

TEST(GeneratedPrograms, DrawTheSamePictureForEveryTarget)
{
    Canvas canvas;
    unsigned failures = 0;
    for (unsigned seed = kFirst; seed < kFirst + numberFrom("KRENDER_PICTURES", kPictures) && failures < 200; ++seed)
    {
        const GeneratedProgram generated = generateProgram(seed, true);
        SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + generated.source);
        const CompiledSource compiled = compileSource(generated.source);
        std::vector<std::vector<std::uint8_t>> pictures;
        std::string all;
        for (std::size_t i = 0; i < compiled.programs.size(); ++i)
        {
            scenes::Programs programs{compiled.programs[i].vertex, compiled.programs[i].fragment};
            all += programs.fragment;
            if (targets()[i].language == TargetLanguage::Cg)
                programs = frontends::cgAsGlsl(programs);
            else
            {
                programs.vertex.insert(0, targets()[i].preamble);
                programs.fragment.insert(0, targets()[i].preamble);
            }
            try
            {
                pictures.push_back(canvas.draw(programs, namesOf(compiled.programs[i].interface)));
            }
            catch (const std::exception& e)
            {
                ++failures;
                ADD_FAILURE() << targets()[i].name << ": " << e.what() << "\n" << programs.fragment;
            }
        }
        if (pictures.size() != targets().size())
            continue;
        for (const auto& picture : pictures)
            failures += difference(pictures[0], picture) > 0.005;
        for (const auto& picture : pictures)
            EXPECT_LE(difference(pictures[0], picture), 0.005) << all;
    }
}

} // namespace
