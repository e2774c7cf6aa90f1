#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace
{

std::vector<std::string> namesIn(const std::string& directory, const std::string& extension)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        if (entry.path().extension() == extension)
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string testName(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
    return name;
}

/// Neither black nor blown out, and with something on it.
void expectGoodToLookAt(const Image& image)
{
    ASSERT_GT(image.width, 0U) << "no picture was made";
    const std::vector<double> brightness = image.brightness();
    const Spread spread = spreadOf(brightness);
    EXPECT_GT(spread.mean, 20);
    EXPECT_LT(spread.mean, 210);
    EXPECT_GT(spread.deviation, 12) << "it is flat";
    std::size_t speckles = 0; // pixels much darker than those beside them
    for (std::size_t i = 1; i + 1 < brightness.size(); ++i)
        speckles += brightness[i] < std::min(brightness[i - 1], brightness[i + 1]) - 40 ? 1 : 0;
    EXPECT_LT(speckles, brightness.size() / 250) << "NaN leaves black pixels";
}

class Scenes : public testing::TestWithParam<std::string>
{
};

// Another version of the driver changes the rounding and the smoothing of edges, which touches few pixels; a turned,
// mirrored or differently lit object touches many.
void expectAsInPicture(const std::string& scene, const std::string& picture)
{
    const Outcome outcome = krview(Workplace(), scene + " --compare " + picture + " --tolerance 12 --allow 3");
    if (outcome.err.find("this krview was built without Assimp") != std::string::npos)
        GTEST_SKIP() << "the scene has a mesh of a file";
    EXPECT_EQ(outcome.status, 0) << outcome.err << "the target update-pictures draws missing pictures";
}

TEST_P(Scenes, LookAsInTheirPictures)
{
    expectAsInPicture(KRENDER_SHARE "/scenes/" + GetParam() + ".json", KRENDER_PICTURES "/" + GetParam() + ".png");
}

class Keys : public testing::TestWithParam<std::string>
{
};

TEST_P(Keys, ShowWhatTheGuideShows)
{
    expectAsInPicture(KRENDER_KEYS "/" + GetParam() + ".json", KRENDER_KEYS "/" + GetParam() + ".png");
}

INSTANTIATE_TEST_SUITE_P(Guide, Keys, testing::ValuesIn(namesIn(KRENDER_KEYS, ".json")), testName);

#ifdef KRENDER_HAS_TARGETS
/// The picture of a shipped scene.
Image drawScene(const std::string& name, const std::string& options = "")
{
    const Workplace place;
    const Outcome outcome =
        krview(place, KRENDER_SHARE "/scenes/" + name + ".json " + options + " --screenshot picture.png");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return readImage(place.path() / "picture.png");
}

TEST_P(Scenes, LookTheSameWithOpenGlsCoreProfile)
{
    const Image image = drawScene(GetParam());
    const Image other = drawScene(GetParam(), "--api gl3.3");
    ASSERT_EQ(image.bytes.size(), other.bytes.size());
    std::size_t changed = 0;
    for (std::size_t i = 0; i < image.bytes.size(); ++i)
        changed += std::abs(image.bytes[i] - other.bytes[i]) > 1 ? 1 : 0;
    EXPECT_LT(static_cast<double>(changed) / static_cast<double>(image.bytes.size()), 0.001);
}
#endif

INSTANTIATE_TEST_SUITE_P(Shipped, Scenes, testing::ValuesIn(namesIn(KRENDER_SHARE "/scenes", ".json")), testName);

class Materials : public testing::TestWithParam<std::string>
{
};

// A material that is shown without any values must get ones that show it.
TEST_P(Materials, LookGoodByThemselves)
{
    const Workplace place;
    const Outcome outcome = krview(place, "--material " KRENDER_SHARE "/materials/" + GetParam() +
                                              ".krs --size 120x90 --screenshot picture.png");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    expectGoodToLookAt(readImage(place.path() / "picture.png"));
}

INSTANTIATE_TEST_SUITE_P(Shipped, Materials, testing::ValuesIn(namesIn(KRENDER_SHARE "/materials", ".krs")), testName);

/// Two ways of saying the same.
struct SamePicture
{
    const char* name;
    const char* arguments;
    const char* alsoAs;
};

class SamePictures : public testing::TestWithParam<SamePicture>
{
};

TEST_P(SamePictures, AreDrawn)
{
    const Workplace place;
    place.write("parts.krs", "float3 halved(float3 c)\n{\n    return c / 2;\n}\n");
    // The target reserves "half".
    place.write("full.krs", R"(#include "parts.krs"
material full(
    vertex float2 uv,
    uniform float3 half = float3(1, 0.6, 0.2),
    uniform matrix3 turn = matrix3(float3(0, 1, 0), float3(0, 0, 1), float3(1, 0, 0)),
    uniform sampler2D grain [[ string file = "grain.png" ]],
    out float4 outRGBA)
{
    float3 lit = float3(0);
    illuminance { lit += gLightDiffuseColor; }
    outRGBA = float4(halved(mul(turn, half)) * texture2D(grain, uv).xyz + lit, 1);
})");
    place.write("lamp.krs", R"(light lamp(uniform float3 color = float3(0, 0.3, 0), out float3 outLightWorldDir,
    out float3 outLightAmbientColor, out float3 outLightDiffuseColor, out float3 outLightSpecularColor)
{
    outLightDiffuseColor = color;
})");
    place.write("scene.json", R"({"material": "full.krs",
    "lights": [{"key": "a", "function": "lamp", "source": "lamp.krs"}]})");
    std::filesystem::copy_file(KRENDER_SHARE "/scenes/bricks.png", place.path() / "grain.png");
    const auto drawn = [&](const std::string& arguments)
    {
        const Outcome outcome = krview(place, arguments + " --size 120x90 --screenshot picture.png");
        EXPECT_EQ(outcome.err, "");
        return readImage(place.path() / "picture.png");
    };
    const Image image = drawn(GetParam().arguments);
    ASSERT_EQ(image.width, 120U);
    EXPECT_GT(image.at(60, 45)[0], 4) << "a value does not reach the program";
    EXPECT_EQ(image.bytes, drawn(GetParam().alsoAs).bytes);
}

constexpr SamePicture kSamePictures[] = {
    {"DefaultNumbers", "scene.json", "scene.json --set half=1,0.6,0.2"},
    {"DefaultMatrix", "scene.json", "scene.json --set turn=0,0,1,1,0,0,0,1,0"},
    {"DefaultPicture", "scene.json", "scene.json --set grain=" KRENDER_SHARE "/scenes/bricks.png"},
    {"PictureAsAnObject", "scene.json", "scene.json --set grain={\"picture\":\"grain.png\"}"},
    {"DefaultOfALight", "scene.json", "scene.json --set acolor=0,0.3,0"},
    {"LightOfAFile", "scene.json", "--material full.krs --light a=lamp.krs:lamp"},
    {"LightOfALibrary", "scene.json", "--material full.krs --light a=lamp --lib lamp.krs"},
    {"PlainOfSeveralBlocks", "--material " KRENDER_SHARE "/materials/lacquer.krs",
     "--plain --material " KRENDER_SHARE "/materials/lacquer.krs"},
};

INSTANTIATE_TEST_SUITE_P(Krview, SamePictures, testing::ValuesIn(kSamePictures),
                         [](const auto& same) { return same.param.name; });

} // namespace
