#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

/// A material of one colour; the library of a light that shows shadows alone stands beside it.
constexpr const char* kFlat = R"(
material flat(uniform float3 color = float3(1), uniform float opacity = 1, out float4 outRGBA)
{
    outRGBA = float4(color, opacity);
}
material sides(uniform float opacity = 0.5, out float4 outRGBA)
{
    outRGBA = gWorldPos.z > 0 ? float4(1, 0, 0, opacity) : float4(0, 0, 1, opacity);
}
material lit(out float4 outRGBA)
{
    float3 sum = float3(0);
    illuminance { sum += gLightDiffuseColor; }
    outRGBA = float4(sum, 1);
}
)";

/// A scene seen from straight ahead, of numbers as the materials write them, on black.
std::string sceneOf(const std::string& objects, const std::string& more = "")
{
    return R"({"material": "flat.krs", "encode": false, "background": {"top": [0, 0, 0], "bottom": [0, 0, 0]},
        "view": {"pitch": 0, "yaw": 0, "distance": 100, "opening": 4}, "size": [100, 100], )" +
           more + R"("objects": [)" + objects + "]}";
}

std::string fromBehind(std::string scene)
{
    const std::string ahead = "\"yaw\": 0";
    return scene.replace(scene.find(ahead), ahead.size(), "\"yaw\": 180");
}

/// What the scene shows: at a place from -3.5 to 3.5, to the right and upwards.
class Shown
{
public:
    explicit Shown(const std::string& scene, const std::string& options = "")
    {
        const Workplace place;
        place.write("flat.krs", kFlat);
        place.write("scene.json", scene);
        const Outcome outcome = krview(place, "scene.json --screenshot picture.png " + options);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        fImage = readImage(place.path() / "picture.png");
    }

    [[nodiscard]] std::vector<int> at(double x, double y) const
    {
        const auto pixel = [](double where) { return static_cast<unsigned>(50 + where * 50 / 3.5); };
        if (fImage.width == 0)
            return {};
        const Image::Pixel seen = fImage.at(pixel(x), pixel(-y));
        return {seen.begin(), seen.end()};
    }

private:
    Image fImage;
};

testing::AssertionResult isNear(const std::vector<int>& seen, const std::vector<int>& wanted)
{
    for (std::size_t i = 0; i < wanted.size(); ++i)
        if (i >= seen.size() || std::abs(seen[i] - wanted[i]) > 2)
            return testing::AssertionFailure()
                   << testing::PrintToString(seen) << " and not " << testing::PrintToString(wanted);
    return testing::AssertionSuccess();
}

const std::vector<int> kBlack{0, 0, 0};
const std::vector<int> kRed{255, 0, 0};
const std::vector<int> kGreen{0, 255, 0};

TEST(Objects, StandWhereTheSceneSays)
{
    // A bar along x, first stretched, then turned about z to point upwards, then moved to the right.
    const Shown bar(sceneOf(R"({"shape": "cube", "scale": [1.5, 0.25, 0.25], "rotation": [0, 0, 90],
        "position": [2, 0.5, 0], "inputs": {"color": [1, 0, 0]}},
        {"shape": "cube", "scale": 0.5, "position": [-2, -1, 0], "inputs": {"color": [0, 1, 0]}})"));
    EXPECT_TRUE(isNear(bar.at(2, 1.8), kRed));
    EXPECT_TRUE(isNear(bar.at(2, -0.8), kRed));
    EXPECT_TRUE(isNear(bar.at(2.6, 0.5), kBlack));
    EXPECT_TRUE(isNear(bar.at(-2, -1), kGreen));
    EXPECT_TRUE(isNear(bar.at(-2, 0), kBlack));
    // Turned about x first and then about y: what pointed to the right points to the back.
    const Shown turned(sceneOf(R"({"shape": "cube", "scale": [1.5, 0.25, 0.5], "rotation": [90, 90, 0]})"));
    EXPECT_TRUE(isNear(turned.at(0.4, 0), kBlack));
    EXPECT_TRUE(isNear(turned.at(0, 0.4), {255, 255, 255}));
}

TEST(Objects, TakeTheValueThatIsNearestToThem)
{
    const std::string objects = R"({"name": "left", "shape": "cube", "position": [-2, 0, 0]},
        {"name": "right", "shape": "cube", "position": [2, 0, 0], "inputs": {"color": [0, 1, 0]}})";
    const std::string inputs = R"("inputs": {"color": [1, 0, 0]}, )";
    const Shown plain(sceneOf(objects, inputs));
    EXPECT_TRUE(isNear(plain.at(-2, 0), kRed));
    EXPECT_TRUE(isNear(plain.at(2, 0), kGreen));
    const Shown one(sceneOf(objects, inputs), "--set left.color=0,0,1");
    EXPECT_TRUE(isNear(one.at(-2, 0), {0, 0, 255}));
    EXPECT_TRUE(isNear(one.at(2, 0), kGreen));
    const Shown all(sceneOf(objects, inputs), "--set color=0,0,1");
    EXPECT_TRUE(isNear(all.at(-2, 0), {0, 0, 255}));
    EXPECT_TRUE(isNear(all.at(2, 0), {0, 0, 255}));
}

TEST(Transparency, LetsThroughWhatIsBehindInWhateverOrder)
{
    std::vector<std::string> panes;
    const auto pane = [](const char* color, int z)
    {
        return R"({"shape": "cube", "scale": [2, 2, 0.01], "transparent": true, "position": [0, 0, )" +
               std::to_string(z) + R"(], "inputs": {"opacity": 0.29289, "color": )" + color + "}}";
    };
    panes = {pane("[0, 0, 1]", -1), pane("[0, 1, 0]", 0), pane("[1, 0, 0]", 1)};
    // Each pane has two sides, which together let half of what is behind through.
    do
    {
        const std::string scene = sceneOf(panes[0] + "," + panes[1] + "," + panes[2]);
        EXPECT_TRUE(isNear(Shown(scene).at(0, 0), {128, 64, 32})) << panes[0];
        EXPECT_TRUE(isNear(Shown(fromBehind(scene)).at(0, 0), {32, 64, 128})) << panes[0];
    } while (std::next_permutation(panes.begin(), panes.end()));

    // The sides of one object, seen from the front and from the back.
    const std::string ball = R"({"shape": "sphere", "material": "flat.krs:sides", "transparent": true})";
    EXPECT_TRUE(isNear(Shown(sceneOf(ball)).at(0.3, 0.2), {128, 0, 64}));
    EXPECT_TRUE(isNear(Shown(fromBehind(sceneOf(ball))).at(0.3, 0.2), {64, 0, 128}));
}

// A small box within a larger one, which tints it from ahead whichever of both the scene names first.
TEST(Transparency, SortsWhatStandsWithinOther)
{
    const std::string outer = R"({"shape": "smooth-sphere", "fineness": 32, "transparent": true,
        "inputs": {"opacity": 0.5, "color": [1, 0, 0]}})";
    const std::string inner = R"({"shape": "box", "scale": 0.3, "transparent": true, "rotation": [0, 40, 0],
        "inputs": {"opacity": 0.5, "color": [0, 0, 1]}})";
    for (const std::string& scene : {sceneOf(outer + "," + inner), sceneOf(inner + "," + outer)})
        for (const std::string& seen : {scene, fromBehind(scene)})
        {
            EXPECT_TRUE(isNear(Shown(seen).at(0.1, 0.05), {143, 0, 96}));
            EXPECT_TRUE(isNear(Shown(seen).at(0.1, 0.7), {191, 0, 0}));
        }
}

/// A wall, and a ball ahead of its middle in light from the right or the front.
Shown shadowOn(const std::string& light, const std::string& ball = "", const std::string& more = "")
{
    return Shown(sceneOf(R"({"shape": "cube", "scale": [3, 3, 0.1], "position": [0, 0, -2]},
        {"shape": "sphere", "scale": 0.5, "position": [1, 0, 0])" +
                             ball + "}",
                         R"("lights": [{"key": "sun", "source": ")" KRENDER_SHARE R"(/lights/shadow.krs", )" + light +
                             "}], " + more),
                 "--material flat.krs:lit");
}

TEST(Shadows, FallWhereTheLightDoesNotReach)
{
    const std::string sun = R"("function": "shadowSunLight", "inputs": {"color": [1, 1, 1], "direction": [1, 0, 1]})";
    // Only the first object, the wall, has the material that shows light: the ball stays white.
    const Shown far = shadowOn(sun);
    EXPECT_TRUE(isNear(far.at(-0.9, 0), kBlack));
    EXPECT_TRUE(isNear(far.at(-0.9, 1.2), {255, 255, 255}));
    EXPECT_TRUE(isNear(shadowOn(sun, R"(, "castsShadow": false)").at(-0.9, 0), {255, 255, 255}));
    EXPECT_TRUE(isNear(shadowOn(sun, R"(, "transparent": true)").at(-0.9, 0), {255, 255, 255}));
    EXPECT_TRUE(isNear(shadowOn(sun, "", R"("shadow": {"light": "sun", "size": 256}, )").at(-0.9, 0), kBlack));

    // From a lamp at the right the shadow of the ball at 1 falls at -1 and is twice as wide.
    const Shown near = shadowOn(R"("function": "shadowLight", "inputs": {"color": [1, 1, 1], "intensity": 1000,
        "position": [3, 0, 2], "target": [1, 0, 0], "cone": 120})");
    EXPECT_TRUE(isNear(near.at(-0.9, 0), kBlack));
    EXPECT_TRUE(isNear(near.at(-0.9, 0.8), kBlack));
    EXPECT_TRUE(isNear(near.at(-0.9, 2), {255, 255, 255}));
}

// Behind the ball the wall is far larger than what is seen of it.
TEST(Shadows, AreFineOnLargeThings)
{
    const auto seen = [](const std::string& wall, const std::string& light)
    {
        return Shown(sceneOf(R"({"shape": "cube", "scale": )" + wall + R"(},
            {"shape": "sphere", "scale": 0.5, "position": [1, 0, 0]})",
                             R"("lights": [{"key": "sun", "source": ")" KRENDER_SHARE R"(/lights/shadow.krs", )" +
                                 light + "}], "),
                     "--material flat.krs:lit");
    };
    // From a lamp, though the wall reaches farther than a hundred times the distance of the ball.
    const Shown near = seen(R"([900, 900, 0.1], "position": [0, 0, -2])",
                            R"("function": "shadowLight", "inputs": {"color": [1, 1, 1], "intensity": 1000,
                                "position": [3, 0, 2], "target": [1, 0, 0], "cone": 120})");
    EXPECT_TRUE(isNear(near.at(-0.9, 0), kBlack));
    EXPECT_TRUE(isNear(near.at(-0.9, 2), {255, 255, 255}));
    // From the sun, where the map need not hold the wall.
    const Shown far = seen(R"([90, 90, 0.1], "position": [0, 0, -2], "castsShadow": false)",
                           R"("function": "shadowSunLight", "inputs": {"color": [1, 1, 1], "direction": [1, 0, 1]})");
    for (const double y : {-0.4, 0.0, 0.4})
        EXPECT_TRUE(isNear(far.at(-0.9, y), kBlack)) << y;
    for (const double y : {-0.6, 0.6})
        EXPECT_TRUE(isNear(far.at(-0.9, y), {255, 255, 255})) << y;
}

} // namespace
