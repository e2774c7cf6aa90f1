// What samplers read: pictures, cube maps, surroundings and what is worked out of them.
#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace
{

using Pixel = Image::Pixel;

constexpr unsigned kSide = 64; // of the pictures
constexpr Pixel kRed{255, 0, 0};
constexpr Pixel kGreen{0, 255, 0};
constexpr Pixel kBlue{0, 0, 255};
constexpr Pixel kYellow{255, 255, 0};
constexpr Pixel kPink{255, 0, 255};
constexpr Pixel kCyan{0, 255, 255};
constexpr Pixel kWhite{255, 255, 255};
constexpr Pixel kBlack{0, 0, 0};
constexpr std::array kFaceNames{"px", "nx", "py", "ny", "pz", "nz"};
constexpr std::array kFaceColours{kRed, kGreen, kBlue, kYellow, kPink, kCyan};

Pixel grey(int value) { return {value, value, value}; }

/// The colour of a direction, as the cube map of the faces' colours has it.
Pixel faceColour(const std::array<double, 3>& direction)
{
    std::size_t axis = 0;
    for (std::size_t i = 1; i < 3; ++i)
        axis = std::abs(direction[i]) > std::abs(direction[axis]) ? i : axis;
    return kFaceColours[2 * axis + (direction[axis] > 0 ? 0 : 1)];
}

/// A JPEG file of 8 by 16 pixels, white above black, with stray bytes between its tables.
std::string jpeg()
{
    return std::string("\xff\xd8\xff\xdb\0\x43\0", 7) + std::string(64, '\x08') + "stray" +
           std::string("\xff\xc0\0\x0b\x08\0\x10\0\x08\1\1\x11\0", 13) +
           // Two codes of two bits for differences of 7 and 8 bits, and one of one bit for the end of a block.
           std::string("\xff\xc4\0\x15\0\0\2", 7) + std::string(14, '\0') + "\x07\x08" +
           std::string("\xff\xc4\0\x14\x10\1", 6) + std::string(16, '\0') +
           std::string("\xff\xda\0\x08\1\1\0\0\x3f\0\x3f\x90\x07\xff\xd9", 15);
}

/// Writes what the scenes of these tests read.
void writePictures(const Workplace& place)
{
    for (std::size_t i = 0; i < kFaceNames.size(); ++i)
        writeImage(place.path() / (std::string(kFaceNames[i]) + ".png"), kSide,
                   [i](unsigned x, unsigned y)
                   { return x > 3 * kSide / 4 && y < kSide / 4 ? kWhite : kFaceColours[i]; });
    writeImage(place.path() / "around.png", 4 * kSide,
               [](unsigned x, unsigned y)
               {
                   const double longitude = ((x + 0.5) / (4 * kSide) - 0.5) * 2 * std::numbers::pi;
                   const double latitude = (0.5 - (y + 0.5) / (4 * kSide)) * std::numbers::pi;
                   return faceColour({std::cos(latitude) * std::sin(longitude), std::sin(latitude),
                                      -std::cos(latitude) * std::cos(longitude)});
               });
    writeImage(place.path() / "above.png", kSide, [](unsigned, unsigned y) { return y < kSide / 2 ? kWhite : kBlack; });
    writeImage(place.path() / "sides.png", kSide, [](unsigned x, unsigned) { return x < kSide / 2 ? kRed : kGreen; });
    writeImage(place.path() / "grid.png", kSide,
               [](unsigned x, unsigned y) { return (x + y) % 2 == 0 ? kWhite : kBlack; });
    writeImage(place.path() / "grey.png", kSide, [](unsigned, unsigned) { return grey(128); });
    writeImage(place.path() / "white.png", kSide, [](unsigned, unsigned) { return kWhite; });
    std::string light = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X 4\n";
    for (int i = 0; i < 8; ++i)
        light += "\x80\x80\x80\x83"; // 4 of each colour
    place.write("four.hdr", light);
    place.write("halves.jpg", jpeg());
}

constexpr const char* kFarView = R"("view": {"pitch": 0, "yaw": 0, "distance": 200, "opening": 1}, "size": [200, 200])";

/// Draws a scene that looks along -z from far away.
Image drawn(const Workplace& place, const std::string& members, const std::string& options = "")
{
    place.write("scene.json", "{" + members + ", " + kFarView + "}");
    const Outcome outcome = krview(place, "scene.json --screenshot picture.png " + options);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    Image image = readImage(place.path() / "picture.png");
    if (image.width == 0)
        image = {200, 200, std::vector<std::uint8_t>(3 * 200 * 200)};
    return image;
}

/// The colours of expressions of KRSL, from left to right on the front of a cube.
/// @param inputs   of the material, each with a comma behind it
/// @param members  of the scene
std::vector<Pixel> shown(const Workplace& place, const std::string& inputs, const std::vector<std::string>& expressions,
                         const std::string& members, const std::string& options = "")
{
    std::string body =
        "    float strip = floor(0.5 * " + std::to_string(expressions.size()) + " * (gWorldPos.x + 1));\n";
    for (std::size_t i = 0; i < expressions.size(); ++i)
        body += "    if (strip == " + std::to_string(i) + ") outRGBA = float4(float3(" + expressions[i] + "), 1);\n";
    place.write("m.krs", "material m(" + inputs +
                             " float3 gWorldPos, out float4 outRGBA)\n{\n    outRGBA = float4(0);\n" + body + "}\n");
    const Image image = drawn(place, R"("material": "m.krs", "shape": "cube", )" + members, options);
    std::vector<Pixel> pixels;
    for (std::size_t i = 0; i < expressions.size(); ++i)
    {
        const double x = static_cast<double>(2 * i + 1) / static_cast<double>(expressions.size()) - 1;
        pixels.push_back(image.at(static_cast<unsigned>(100 + 57 * x), 100));
    }
    return pixels;
}

bool areClose(const std::vector<Pixel>& some, const std::vector<Pixel>& others, int tolerance)
{
    for (std::size_t i = 0; i < some.size(); ++i)
        for (std::size_t c = 0; c < 3; ++c)
            if (std::abs(some[i][c] - others[i][c]) > tolerance)
                return false;
    return some.size() == others.size();
}

struct Around
{
    const char* name;
    const char* members;           ///< of the scene
    std::array<Pixel, 6> expected; ///< towards +x, -x, +y, -y, +z, -z
    Pixel background = kCyan;      ///< in a corner
};

class SeenAround : public testing::TestWithParam<Around>
{
};

TEST_P(SeenAround, TheRightColoursInAllDirections)
{
    const Workplace place;
    writePictures(place);
    const std::vector<std::string> directions{"1, 0, 0", "-1, 0, 0", "0, 1, 0", "0, -1, 0", "0, 0, 1", "0, 0, -1"};
    std::vector<std::string> expressions;
    for (const std::string& direction : directions)
        expressions.push_back("textureCube(env, float3(" + direction + ")).xyz");
    const std::vector<Pixel> expected(GetParam().expected.begin(), GetParam().expected.end());
    for (const std::string& api : apis())
    {
        const std::vector<Pixel> seen =
            shown(place, "uniform samplerCube env,", expressions, GetParam().members, "--api " + api);
        EXPECT_TRUE(areClose(seen, expected, 2)) << api << testing::PrintToString(seen);
        const Pixel corner = readImage(place.path() / "picture.png").at(2, 2);
        EXPECT_TRUE(areClose({corner}, {GetParam().background}, 2)) << api << testing::PrintToString(corner);
    }
}

constexpr Pixel kGradient{76, 86, 101}; // of the background, in the upper left corner

INSTANTIATE_TEST_SUITE_P(
    Krview, SeenAround,
    testing::Values(
        Around{"SixPictures",
               R"("inputs": {"env": {"faces": ["px.png", "nx.png", "py.png", "ny.png", "pz.png", "nz.png"]}})",
               kFaceColours, kGradient},
        Around{"LatLong", R"("inputs": {"env": "around.png"})", kFaceColours, kGradient},
        Around{"Environment", R"("environment": "around.png")", kFaceColours},
        Around{"EnvironmentOfSixPictures",
               R"("environment": {"picture": {"faces": ["px.png", "nx.png", "py.png", "ny.png", "pz.png", "nz.png"]},
                   "turn": 90})",
               {kPink, kCyan, kBlue, kYellow, kGreen, kRed},
               kRed},
        Around{"TurnedEnvironment",
               R"("environment": {"picture": "around.png", "turn": 90})",
               {kPink, kCyan, kBlue, kYellow, kGreen, kRed},
               kRed},
        Around{"HiddenEnvironment", R"("environment": {"picture": "around.png", "background": false})", kFaceColours,
               kGradient},
        // Codes are not decoded where the frame buffer does not code, and light is coded for the background alone.
        Around{"Codes",
               R"("encode": false, "environment": "grey.png")",
               {grey(128), grey(128), grey(128), grey(128), grey(128), grey(128)},
               grey(128)},
        Around{"Light",
               R"("encode": false, "environment": {"picture": "four.hdr", "intensity": 0.05})",
               {grey(51), grey(51), grey(51), grey(51), grey(51), grey(51)},
               grey(124)},
        Around{"BlurredBackground",
               R"("environment": {"picture": "four.hdr", "intensity": 0.05, "blur": 0.5})",
               {grey(124), grey(124), grey(124), grey(124), grey(124), grey(124)},
               grey(124)}),
    [](const auto& around) { return around.param.name; });

// The upper right corners of the pictures are white.
TEST(CubeMaps, HaveTheirPicturesUpright)
{
    const Workplace place;
    writePictures(place);
    std::vector<std::string> expressions;
    for (const char* corner :
         {"1, 0.8, -0.8", "-1, 0.8, 0.8", "0.8, 1, -0.8", "0.8, -1, 0.8", "0.8, 0.8, 1", "-0.8, 0.8, -1"})
        expressions.push_back("textureCube(env, float3(" + std::string(corner) + ")).xyz");
    const std::vector<Pixel> seen =
        shown(place, "uniform samplerCube env,", expressions,
              R"("inputs": {"env": {"faces": ["px.png", "nx.png", "py.png", "ny.png", "pz.png", "nz.png"]}})");
    EXPECT_TRUE(areClose(seen, std::vector<Pixel>(6, kWhite), 0)) << testing::PrintToString(seen);
}

struct Read
{
    const char* name;
    const char* inputs; ///< of the material
    const char* expression;
    const char* members; ///< of the scene
    Pixel expected;
};

class Pictures : public testing::TestWithParam<Read>
{
};

TEST_P(Pictures, AreReadAsTheSceneSays)
{
    const Workplace place;
    writePictures(place);
    const std::vector<Pixel> seen = shown(place, GetParam().inputs, {GetParam().expression}, GetParam().members);
    EXPECT_TRUE(areClose(seen, {GetParam().expected}, 3)) << testing::PrintToString(seen);
}

// A coded 128 is 0.216 of the light of white.
constexpr const char* kAsLight = "step(0.3, texture2D(map, float2(0.5)).x)";
// Repeated, mirrored and clamped pictures differ in these.
constexpr const char* kBeyond = "texture2D(map, float2(1.25, 0.5)).x, texture2D(map, float2(-0.25, 0.5)).x, "
                                "texture2D(map, float2(2.25, 0.5)).x";
constexpr const char* kMap = "uniform sampler2D map,";

INSTANTIATE_TEST_SUITE_P(
    Krview, Pictures,
    testing::Values(
        Read{"ColoursAreDecoded", kMap, kAsLight, R"("inputs": {"map": "grey.png"})", kBlack},
        Read{"NotWhereTheFrameDoesNotCode", kMap, kAsLight, R"("encode": false, "inputs": {"map": "grey.png"})",
             kWhite},
        Read{"NotWhereTheSceneSays", kMap, kAsLight, R"("inputs": {"map": {"picture": "grey.png", "coded": false}})",
             kWhite},
        Read{"NotWhereTheMetadataSay", R"(uniform sampler2D map [[ string colorspace = "linear" ]],)", kAsLight,
             R"("inputs": {"map": "grey.png"})", kWhite},
        Read{"NotWhereTheNameSays", "uniform sampler2D roughMap,", "step(0.3, texture2D(roughMap, float2(0.5)).x)",
             R"("inputs": {"roughMap": "grey.png"})", kWhite},
        Read{"AheadOfTheName", R"(uniform sampler2D roughMap [[ string colorspace = "srgb" ]],)",
             "step(0.3, texture2D(roughMap, float2(0.5)).x)", R"("inputs": {"roughMap": "grey.png"})", kBlack},
        Read{"AlsoOfCubeMaps", "uniform samplerCube map,", "step(0.3, textureCube(map, float3(1)).x)",
             R"("inputs": {"map": "grey.png"})", kBlack},
        Read{"LightHasNoBound", kMap, "0.1 * texture2D(map, float2(0.5)).x",
             R"("encode": false, "inputs": {"map": "four.hdr"})", grey(102)},
        Read{"JpegStandsUpright",
             kMap,
             "texture2D(map, float2(0.5, 0.75)).x, texture2D(map, float2(0.5, 0.25)).x, 0.5",
             R"("encode": false, "inputs": {"map": "halves.jpg"})",
             {255, 0, 128}},
        Read{"Repeated", kMap, kBeyond, R"("inputs": {"map": "sides.png"})", {255, 0, 255}},
        Read{"Mirrored",
             kMap,
             kBeyond,
             R"("inputs": {"map": {"picture": "sides.png", "wrap": "mirror"}})",
             {0, 255, 255}},
        Read{"Clamped", kMap, kBeyond, R"("inputs": {"map": {"picture": "sides.png", "wrap": "clamp"}})", {0, 255, 0}},
        Read{"Nearest", kMap, "texture2D(map, float2(0.5 + 0.25 / 64.0, 0.5)).xyz",
             R"("encode": false, "inputs": {"map": {"picture": "sides.png", "filter": "nearest"}})", kGreen},
        Read{"Linear",
             kMap,
             "texture2D(map, float2(0.5 + 0.25 / 64.0, 0.5)).xyz",
             R"("encode": false, "inputs": {"map": {"picture": "sides.png", "filter": "linear"}})",
             {64, 191, 0}},
        Read{"LinearFromAfar", kMap, "texture2D(map, floor(gWorldPos.xy * 1000.0) + 0.5 / 64.0).xyz",
             R"("inputs": {"map": {"picture": "grid.png", "filter": "linear"}})", kBlack},
        Read{"MipmapFromAfar", kMap, "texture2D(map, floor(gWorldPos.xy * 1000.0) + 0.5 / 64.0).xyz",
             R"("encode": false, "inputs": {"map": "grid.png"})", grey(128)}),
    [](const auto& read) { return read.param.name; });

// Half of the surroundings are white: what a matte surface receives of them changes with the cosine from their middle.
TEST(EnvironmentLight, BrightensWhatItSees)
{
    const Workplace place;
    writePictures(place);
    place.write("m.krs",
                "material m(out float4 outRGBA)\n"
                "{ float3 c = float3(0); illuminance { c += gLightAmbientColor; } outRGBA = float4(c, 1); }\n");
    const Image image = drawn(place, R"("material": "m.krs", "shape": "smooth-sphere", "environment": "above.png",
        "encode": false, "lights": [{"key": "all", "function": "environmentLight",
            "source": ")" KRENDER_SHARE R"(/lights/environment.krs"}])");
    for (const double y : {-0.9, -0.5, 0.0, 0.3, 0.6, 0.9})
        EXPECT_NEAR(image.at(100, static_cast<unsigned>(100 - 57 * y))[0], 127.5 * (1 + y), 4) << y;
}

/// Writes a picture of light from all directions.
/// @param light  0 to 255 times 8, by column and row
void writeLight(const Workplace& place, unsigned width, const std::function<int(unsigned x, unsigned y)>& light)
{
    std::string file =
        "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y " + std::to_string(width / 2) + " +X " + std::to_string(width) + "\n";
    for (unsigned y = 0; y < width / 2; ++y)
        for (unsigned x = 0; x < width; ++x)
            file += std::string(3, static_cast<char>(light(x, y))) + "\x8b";
    place.write("light.hdr", file);
}

/// The direction of a pixel of such a picture.
std::array<double, 3> directionOf(double x, double y, unsigned width)
{
    const double longitude = ((x + 0.5) / width - 0.5) * 2 * std::numbers::pi;
    const double latitude = (0.5 - 2 * (y + 0.5) / width) * std::numbers::pi;
    return {std::cos(latitude) * std::sin(longitude), std::sin(latitude), -std::cos(latitude) * std::cos(longitude)};
}

std::string textOf(const std::array<double, 3>& v)
{
    return "float3(" + std::to_string(v[0]) + ", " + std::to_string(v[1]) + ", " + std::to_string(v[2]) + ")";
}

constexpr const char* kReceived = "uniform samplerCube received [[ string environment = \"irradiance\" ]],";

// The side of a cube around a point, straight ahead and from beside it: each part counts by its solid angle.
TEST(EnvironmentLight, CountsSurroundingsBySolidAngle)
{
    const Workplace place;
    writePictures(place);
    writeImage(place.path() / "black.png", kSide, [](unsigned, unsigned) { return kBlack; });
    const std::vector<Pixel> seen =
        shown(place, kReceived,
              {"textureCube(received, float3(1, 0, 0)).xyz", "textureCube(received, float3(0, 1, 0)).xyz",
               "textureCube(received, float3(0, 0, -1)).xyz", "textureCube(received, float3(-1, 0, 0)).xyz"},
              R"("encode": false, "environment": {"picture": {"faces":
                  ["white.png", "black.png", "black.png", "black.png", "black.png", "black.png"]}})");
    EXPECT_TRUE(areClose(seen, {grey(141), grey(28), grey(28), kBlack}, 2)) << testing::PrintToString(seen);
}

// A light of one pixel sheds as much light on what faces it wherever it stands between the texels of the cube map.
TEST(EnvironmentLight, LosesNoSmallLight)
{
    constexpr unsigned kWidth = 64;
    for (const auto& [x, y] : {std::pair(32U, 16U), {33U, 15U}, {34U, 12U}, {9U, 6U}, {11U, 3U}, {14U, 1U}, {50U, 0U}})
    {
        const Workplace place;
        writeLight(place, kWidth,
                   [x = x, y = y](unsigned column, unsigned row) { return column == x && row == y ? 255 : 0; });
        const auto sineOf = [](double row) { return std::sin((0.5 - 2 * row / kWidth) * std::numbers::pi); };
        const double received = 8 * 255 * 2.0 / kWidth * (sineOf(y) - sineOf(y + 1)); // over pi
        const std::vector<Pixel> seen = shown(
            place, kReceived,
            {"textureCube(received, " + textOf(directionOf(x, y, kWidth)) + ").xyz / " + std::to_string(2 * received)},
            R"("encode": false, "environment": "light.hdr")");
        EXPECT_NEAR(seen[0][0], 127.5, 30) << x << ' ' << y;
    }
}

// White surroundings look white in a white metal, whatever its roughness: not brighter in the middle, nor darker at the
// rim, where normals face away.
TEST(EnvironmentLight, LeavesWhiteEven)
{
    const Workplace place;
    writePictures(place);
    for (const char* roughness : {"0", "0.1", "0.3", "0.7"})
    {
        const Image image = drawn(place, R"("material": ")" KRENDER_SHARE
                                         R"(/materials/metalrough.krs", "shape": "smooth-sphere", "fineness": 12,
            "environment": "white.png", "encode": false, "samples": 1, "inputs": {"baseColor": [1, 1, 1], "metalness": 1, "sky": 0,
                "roughness": )" + std::string(roughness) +
                                             R"(}, "lights": [{"key": "all",
            "function": "environmentLight", "inputs": {"blur": )" +
                                             roughness + R"(},
            "source": ")" KRENDER_SHARE R"(/lights/environment.krs"}])");
        int darkest = 255;
        for (unsigned y = 40; y < 160; ++y)
            for (unsigned x = 40; x < 160; ++x)
                darkest = std::min(darkest, image.at(x, y)[0]);
        EXPECT_NEAR(darkest, 135.5, 4) << roughness; // 1, compressed
        EXPECT_NEAR(image.at(100, 100)[0], 135.5, 4) << roughness;
    }
}

// A sharp edge of the surroundings stays where it is and gets as soft as the blur says.
TEST(EnvironmentLight, MirrorsAsBlurredAsItIsTold)
{
    const Workplace place;
    writePictures(place);
    constexpr const char* kInputs = "uniform samplerCube around [[ string environment = \"mirror\", string blur = "
                                    "\"soft\" ]], uniform float soft,";
    const auto seen = [&](const char* soft)
    {
        return shown(place, kInputs,
                     {"textureCube(around, float3(0, 1, 0)).xyz", "textureCube(around, float3(0, 0.26, 0.97)).xyz",
                      "textureCube(around, float3(0, -0.26, 0.97)).xyz", "soft"},
                     R"("encode": false, "environment": "above.png", "inputs": {"soft": )" + std::string(soft) + "}");
    };
    EXPECT_TRUE(areClose(seen("0"), {kWhite, kWhite, kBlack, kBlack}, 2)) << testing::PrintToString(seen("0"));
    // Half of the lobe's light comes from within atan(alpha) of its tiny mirrors' middle.
    const std::vector<Pixel> soft = seen("0.7");
    EXPECT_GT(soft[0][0], 225);
    EXPECT_NEAR(soft[1][0], 170, 12);
    EXPECT_NEAR(soft[1][0] + soft[2][0], 255, 6);
}

// Around a round light what is mirrored of it is round too, though the texels around it lie in many ways.
TEST(EnvironmentLight, MirrorsWithoutSeams)
{
    constexpr unsigned kWidth = 128;
    constexpr std::array<double, 3> kMiddle{0, 0.8, 0.6};
    const Workplace place;
    writeLight(place, kWidth,
               [&](unsigned x, unsigned y)
               {
                   const std::array<double, 3> d = directionOf(x, y, kWidth);
                   return d[0] * kMiddle[0] + d[1] * kMiddle[1] + d[2] * kMiddle[2] > 0.95 ? 25 : 0;
               });
    for (const char* blur : {"0.35", "0.5"})
    {
        std::vector<std::string> expressions;
        for (int i = 0; i < 12; ++i)
        {
            const double angle = i * std::numbers::pi / 6;
            const double up = 0.5 * std::cos(angle);
            const std::array<double, 3> aside{0.5 * std::sin(angle), 0.75 * kMiddle[1] + up * kMiddle[2],
                                              0.75 * kMiddle[2] - up * kMiddle[1]};
            expressions.push_back("0.02 * textureCube(around, " + textOf(aside) + ").xyz");
        }
        const std::vector<Pixel> seen =
            shown(place,
                  "uniform samplerCube around [[ string environment = \"mirror\", string blur = \"soft\" ]], "
                  "uniform float soft,",
                  expressions,
                  R"("encode": false, "environment": "light.hdr", "inputs": {"soft": )" + std::string(blur) + "}");
        EXPECT_GT(seen[0][0], 20) << blur;
        EXPECT_LT(seen[0][0], 230) << blur;
        EXPECT_TRUE(areClose(seen, std::vector<Pixel>(12, seen[0]), 3)) << blur << testing::PrintToString(seen);
    }
}

} // namespace
