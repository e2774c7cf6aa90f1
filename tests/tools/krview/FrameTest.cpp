#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

/// A scene of a material that writes a value everywhere, in front of black.
void writeScene(const Workplace& place, const std::string& members)
{
    place.write("even.krs", "material even(uniform float value = 1, uniform float alpha = 1, out float4 outRGBA)\n"
                            "{\n    outRGBA = float4(float3(value), alpha);\n}\n");
    place.write("scene.json", R"({"material": "even.krs", "shape": "cube",
    "background": {"top": [0, 0, 0], "bottom": [0, 0, 0]}, )" +
                                  members + "}");
}

/// The reds of all pixels.
std::set<int> redsOf(const Image& image)
{
    std::set<int> reds;
    for (std::size_t i = 0; i < image.bytes.size(); i += 3)
        reds.insert(image.bytes[i]);
    return reds;
}

struct Coded
{
    const char* name;
    const char* members;
    std::set<int> reds;
};

class Frames : public testing::TestWithParam<Coded>
{
};

// On the way from the material to the picture, light is coded once, after the samples were mixed.
TEST_P(Frames, MixAndCodeLight)
{
    const Workplace place;
    writeScene(place, GetParam().members);
    for (const std::string& api : apis())
    {
        const Outcome outcome = krview(place, "scene.json --size 120x90 --screenshot picture.png --api " + api);
        EXPECT_EQ(outcome.err, "") << api;
        const std::set<int> reds = redsOf(readImage(place.path() / "picture.png"));
        // Drivers round in ways of their own.
        EXPECT_TRUE(std::equal(reds.begin(), reds.end(), GetParam().reds.begin(), GetParam().reds.end(),
                               [](int a, int b) { return std::abs(a - b) <= 1; }))
            << api << ": " << testing::PrintToString(reds);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Krview, Frames,
    testing::Values(Coded{"Edges", R"("samples": 4)", {0, 137, 188, 225, 255}},
                    Coded{"EdgesNotCoded", R"("samples": 4, "encode": false)", {0, 64, 128, 191, 255}},
                    Coded{"OneSample", R"("samples": 1, "inputs": {"value": 0.5})", {0, 188}},
                    Coded{
                        "TwoSidesBlended", R"("samples": 1, "inputs": {"alpha": 0.5}, "transparent": true)", {0, 225}},
                    Coded{"AxesAsTheyAre", R"("samples": 1, "inputs": {"value": 0}, "axes": true)", {0, 64, 255}},
                    Coded{"AsManySamplesAsThereAre", R"("samples": 64)", {0, 137, 188, 225, 255}}),
    [](const auto& coded) { return std::string(coded.param.name); });

TEST(Pictures, AreTheSameWithoutADisplay)
{
    for (const std::string& api : apis())
    {
        const Workplace place;
        const std::string scene = KRENDER_SHARE "/scenes/marble-grid.json";
        const std::vector<std::string> arguments{scene, "--api", api, "--screenshot", "picture.png"};
        EXPECT_EQ(place.run(KRVIEW_PROGRAM, arguments).status, 0);
        const std::string withDisplay = place.read("picture.png");
        for (const char* display : {"", ":98765"})
        {
            std::filesystem::remove(place.path() / "picture.png");
            const Outcome outcome = place.run(KRVIEW_PROGRAM, arguments, {.environment = {{"DISPLAY", display}}});
            EXPECT_EQ(outcome.err, "");
            EXPECT_TRUE(place.read("picture.png") == withDisplay) << api;
        }
    }
}

// The edges of the parts of a large picture are in line.
TEST(Pictures, MayBeLargerThanADriverCanDrawAtOnce)
{
    const Workplace place;
    writeScene(place, R"("samples": 1, "view": {"pitch": 0, "yaw": 0})");
    const Outcome outcome = krview(place, "scene.json --size 3000x2600 --screenshot picture.png");
    EXPECT_EQ(outcome.err, "");
    const Image image = readImage(place.path() / "picture.png");
    ASSERT_EQ(std::pair(image.width, image.height), std::pair(3000U, 2600U));
    unsigned left = 0;
    while (left < 1500 && image.at(left, 1300)[0] == 0)
        ++left;
    ASSERT_GT(left, 200U);
    std::size_t wrong = 0;
    const unsigned low = 1300 - (1500 - left);
    for (unsigned y = 0; y < image.height; ++y)
        for (unsigned x = 0; x < image.width; ++x)
            wrong += (image.at(x, y)[0] == 255) != (x >= left && x < 3000 - left && y >= low && y < 2600 - low) ? 1 : 0;
    EXPECT_EQ(wrong, 0U);
}

struct Compared
{
    const char* name;
    const char* arguments;
    int status;
    const char* out;
    const char* err;
};

class Comparisons : public testing::TestWithParam<Compared>
{
};

// What is compared with is white, but for a quarter of level 250.
TEST_P(Comparisons, SayHowFarPicturesAreApart)
{
    const Workplace place;
    writeScene(place, R"("encode": false, "view": {"distance": 0.5}, "size": [64, 64])");
    writeImage(place.path() / "expected.png", 64,
               [](unsigned x, unsigned y) {
                   return x < 32 && y >= 32 ? Image::Pixel{255, 250, 255} : Image::Pixel{255, 255, 255};
               });
    const Outcome outcome = krview(place, std::string("scene.json --compare expected.png ") + GetParam().arguments);
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.out, GetParam().out);
    EXPECT_EQ(outcome.err, GetParam().err);
}

constexpr const char* kApart = "mean difference 0.4167\ngreatest difference 5 at 0,63\ndiffering pixels 25.0000 %\n";
constexpr const char* kNear = "mean difference 0.4167\ngreatest difference 5 at 0,63\ndiffering pixels 0.0000 %\n";

INSTANTIATE_TEST_SUITE_P(
    Krview, Comparisons,
    testing::Values(Compared{"Differ", "", 1, kApart,
                             "krview: error: the picture differs from 'expected.png': 25.0000 % of its pixels by more "
                             "than 2 levels, and "
                             "0.1 % may\n"},
                    Compared{"Tolerated", "--tolerance 5", 0, kNear, ""},
                    Compared{"JustNotTolerated", "--tolerance 4 --allow 24.9", 1, kApart,
                             "krview: error: the picture differs from 'expected.png': 25.0000 % of its pixels by more "
                             "than 4 levels, and "
                             "24.9 % may\n"},
                    Compared{"Allowed", "--allow 25", 0, kApart, ""},
                    Compared{"OtherSize", "--size 64x65", 1, "",
                             "krview: error: the picture has 64x65 pixels, and 'expected.png' has 64x64\n"}),
    [](const auto& compared) { return std::string(compared.param.name); });

TEST(Comparison, ShowsWhereItIs)
{
    const Workplace place;
    writeScene(place, R"("view": {"distance": 0.5}, "size": [64, 64])");
    writeImage(place.path() / "expected.png", 64,
               [](unsigned x, unsigned y) {
                   return x < 32 && y >= 32 ? Image::Pixel{0, 0, 255} : Image::Pixel{255, 255, 255};
               });
    EXPECT_EQ(krview(place, "scene.json --compare expected.png --diff where.png").status, 1);
    const Image where = readImage(place.path() / "where.png");
    ASSERT_EQ(where.width, 64U);
    for (unsigned y = 0; y < 64; ++y)
        for (unsigned x = 0; x < 64; ++x)
            ASSERT_EQ(where.at(x, y), x < 32 && y >= 32 ? (Image::Pixel{255, 0, 0}) : (Image::Pixel{85, 85, 85}));
}

TEST(Turntable, TurnsTheSceneAndGoesOnInTime)
{
    const Workplace place;
    const auto writeFountain = [&place](unsigned yaw)
    {
        place.write("scene.json", R"({"material": ")" KRENDER_SHARE R"(/scenes/droplet.krs", "shape": "particles",
    "size": [120, 90], "view": {"yaw": )" +
                                      std::to_string(yaw) + "}}");
    };
    for (const std::string arguments : {"scene.json --turntable 3 new/turn", "--turntable 3 new/turn scene.json"})
    {
        writeFountain(10);
        EXPECT_EQ(krview(place, arguments).err, "");
        for (unsigned i = 0; i < 3; ++i)
        {
            writeFountain(10 + 120 * i);
            const std::string number = std::to_string(i);
            EXPECT_EQ(
                krview(place, "scene.json --compare new/turn/00" + number + ".png --frames " + std::to_string(i + 1))
                    .err,
                "");
        }
        EXPECT_EQ(krview(place, "scene.json --compare new/turn/002.png").status, 1) << "time stands still";
        EXPECT_FALSE(std::filesystem::exists(place.path() / "new/turn/003.png"));
        std::filesystem::remove_all(place.path() / "new");
    }
}

} // namespace
