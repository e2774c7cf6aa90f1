// Random programs, whose seed, source and program a failure shows. KRENDER_PROGRAMS says how many there are, and
// KRENDER_FIRST_PROGRAM with which seed they begin.
#include "GeneratedPrograms.h"

#include <gtest/gtest.h>

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

constexpr unsigned kMostFailures = 5;

unsigned numberFrom(const char* variable, unsigned otherwise)
{
    const char* text = std::getenv(variable);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

const unsigned gFirst = numberFrom("KRENDER_FIRST_PROGRAM", 1);

TEST(GeneratedPrograms, AreAcceptedByTheFrontEndAndByEveryTarget)
{
    unsigned failures = 0;
    for (unsigned seed = gFirst; seed < gFirst + numberFrom("KRENDER_PROGRAMS", kPrograms) && failures < kMostFailures;
         ++seed)
    {
        const GeneratedProgram program = generateProgram(seed, GeneratedKind::Any);
        const std::string faults = faultsOf(program);
        failures += !faults.empty();
        EXPECT_TRUE(faults.empty()) << "seed " << seed << "\n"
                                    << faults << program.source << program.included << program.lights;
    }
}

TEST(GeneratedPrograms, DrawTheSamePictureForEveryTarget)
{
    Canvas canvas;
    unsigned failures = 0;
    unsigned skipped = 0;
    const unsigned count = numberFrom("KRENDER_PICTURES", kPictures);
    for (unsigned seed = gFirst; seed < gFirst + count && failures < kMostFailures; ++seed)
    {
        const GeneratedProgram generated = generateProgram(seed, GeneratedKind::Drawable);
        const CompiledSource compiled = compileSource(generated);
        ASSERT_EQ(compiled.problems, "") << "seed " << seed << "\n"
                                         << generated.source << generated.included << generated.lights;
        const double differing = pictureDifference(canvas, compiled);
        skipped += differing < 0;
        failures += differing > kSamePicture;
        EXPECT_LE(differing, kSamePicture)
            << "seed " << seed << "\n"
            << generated.source << generated.included << generated.lights << textsOf(compiled);
    }
    EXPECT_LE(skipped, count / 10);
}

} // namespace
