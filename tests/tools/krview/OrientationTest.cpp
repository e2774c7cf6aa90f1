#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

namespace
{

constexpr unsigned kSide = 64;     // of the texture
constexpr unsigned kPicture = 200; // pixels
/// Seen from so far away along -z, a pixel's place on the picture is that of what is seen there.
constexpr const char* kFarView =
    R"("encode": false, "view": {"pitch": 0, "yaw": 0, "distance": 200, "opening": 1}, "size": [200, 200])";

/// What the picture shows of the scene, from its middle to an edge.
double reach() { return 200 * std::tan(0.5 * std::numbers::pi / 180); }

struct Unrolled
{
    const char* shape;
    double (*v)(double y); ///< the second texture coordinate at a height
};

double vOfSphere(double y) { return std::asin(y) / std::numbers::pi + 0.5; }
double vOfCylinder(double y) { return (2 + y) / (2 * std::numbers::pi); }

class Shapes : public testing::TestWithParam<Unrolled>
{
};

// Red is u, green is v. Texture corners that are paired with the wrong positions mirror the texture within each face,
// and a picture read upside down or a transposed matrix moves it as a whole.
TEST_P(Shapes, WearATextureTheRightWayAround)
{
    const Workplace place;
    writeImage(place.path() / "map.png", kSide,
               [](unsigned x, unsigned y) {
                   return Image::Pixel{static_cast<int>(4 * x + 2), static_cast<int>(4 * (kSide - 1 - y) + 2), 0};
               });
    place.write("scene.json", R"({"material": ")" KRENDER_SHARE R"(/materials/textured.krs", "shape": ")" +
                                  std::string(GetParam().shape) + R"(", "inputs": {"colorMap": "map.png"},
        "lights": [{"key": "room", "function": "ambientLight", "inputs": {"color": [1, 1, 1]}}], )" +
                                  std::string(kFarView) + "}");
    const Outcome outcome = krview(place, "scene.json --screenshot picture.png");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const Image image = readImage(place.path() / "picture.png");
    ASSERT_EQ(image.width, kPicture);

    for (const double x : {-0.4, -0.2, 0.05, 0.2, 0.4})
        for (const double y : {-0.5, -0.2, 0.1, 0.3, 0.6})
        {
            const auto pixel = [](double at) { return static_cast<unsigned>((0.5 + 0.5 * at / reach()) * kPicture); };
            const Image::Pixel seen = image.at(pixel(x), pixel(-y));
            const double radius = GetParam().v == vOfSphere ? std::sqrt(1 - y * y) : 1;
            // Longitudes run from +x over -z, and u from the first of ten steps.
            const double longitude = 360 - std::acos(x / radius) * 180 / std::numbers::pi;
            EXPECT_NEAR(seen[0] / 256.0, longitude / 360 - 0.1, 0.02) << x << ' ' << y;
            EXPECT_NEAR(seen[1] / 256.0, GetParam().v(y), 0.02) << x << ' ' << y;
        }
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, Shapes,
                         testing::Values(Unrolled{"sphere", vOfSphere}, Unrolled{"cylinder", vOfCylinder},
                                         Unrolled{"smooth-sphere", vOfSphere},
                                         Unrolled{"smooth-cylinder", vOfCylinder}),
                         [](const auto& unrolled)
                         {
                             std::string name = unrolled.param.shape;
                             std::erase(name, '-');
                             return name;
                         });

// At a pole the pieces of a sphere end in a point, whose texture coordinate is that of the middle of the piece.
TEST(SmoothSphere, WearsTextureStraightToThePoles)
{
    constexpr unsigned kPieces = 8;
    for (const int pitch : {90, -90})
    {
        const Workplace place;
        place.write("m.krs",
                    "material m(vertex float2 uv, out float4 outRGBA)\n{\n    outRGBA = float4(uv, 0, 1);\n}\n");
        place.write("scene.json", R"({"material": "m.krs", "shape": "smooth-sphere", "fineness": 8,
            "inputs": {"uv": "textureCoord"}, "encode": false, "size": [200, 200],
            "view": {"yaw": 0, "distance": 200, "opening": 1, "pitch": )" +
                                      std::to_string(pitch) + "}}");
        const Outcome outcome = krview(place, "scene.json --screenshot picture.png");
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        const Image image = readImage(place.path() / "picture.png");
        ASSERT_EQ(image.width, kPicture);
        for (unsigned piece = 0; piece < kPieces; ++piece)
        {
            constexpr double kRadius = 0.3;
            const double share = (piece + 0.5) / kPieces;
            const double angle = (0.1 + share) * 2 * std::numbers::pi;
            const double up = pitch > 0 ? std::sin(angle) : -std::sin(angle);
            const auto pixel = [](double at) { return static_cast<unsigned>((0.5 + 0.5 * at / reach()) * kPicture); };
            const Image::Pixel seen = image.at(pixel(kRadius * std::cos(angle)), pixel(-kRadius * up));
            // The first ring of points is half way to the equator.
            const double ring = std::sqrt(0.5) * std::cos(std::numbers::pi / kPieces);
            const double v = 0.25 * kRadius / ring;
            EXPECT_NEAR(seen[0] / 255.0, share, 0.015) << piece << " at pitch " << pitch;
            EXPECT_NEAR(seen[1] / 255.0, pitch > 0 ? 1 - v : v, 0.015) << piece << " at pitch " << pitch;
        }
    }
}

/// The brightness in the middle of a sphere with this picture of heights, lit from one side.
double brightness(const char* heights, const char* light)
{
    const Workplace place;
    writeImage(place.path() / "right.png", kSide,
               [](unsigned x, unsigned) {
                   return Image::Pixel{static_cast<int>(4 * x), 0, 0};
               });
    writeImage(place.path() / "up.png", kSide,
               [](unsigned, unsigned y) {
                   return Image::Pixel{static_cast<int>(4 * (kSide - 1 - y)), 0, 0};
               });
    place.write("scene.json", R"({"material": ")" KRENDER_SHARE R"(/materials/normalmapped.krs", "shape": "sphere",
        "inputs": {"normalMap": {"picture": ")" +
                                  std::string(heights) + R"(", "normalMap": 40}},
        "lights": [{"key": "sun", "function": "directionalLight", "inputs": {"color": [1, 1, 1], "direction": )" +
                                  light + "}}], " + std::string(kFarView) + "}");
    const Outcome outcome = krview(place, "scene.json --screenshot picture.png");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const Image image = readImage(place.path() / "picture.png");
    return image.width == 0 ? 0 : image.at(kPicture / 2, kPicture / 2)[1];
}

// Heights that rise to the right face left, and heights that rise upwards face down.
TEST(NormalMaps, FaceDownTheSlope)
{
    EXPECT_GT(brightness("right.png", "[-1, 0, 1]"), brightness("right.png", "[1, 0, 1]") + 30);
    EXPECT_GT(brightness("up.png", "[0, -1, 1]"), brightness("up.png", "[0, 1, 1]") + 30);
}

} // namespace
