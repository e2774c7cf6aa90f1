#include "Program.h"

#include <gtest/gtest.h>

namespace
{

constexpr const char* kPhong = KRENDER_SHARE "/materials/phong.krs";
constexpr const char* kTextured = KRENDER_SHARE "/materials/textured.krs";
constexpr const char* kLambert = KRENDER_SHARE "/materials/lambert.krs";

struct Rejected
{
    const char* fault;
    std::string scene; ///< the scene file's text; "" for a run without one
    std::vector<std::string> arguments;
    int status;
    std::vector<std::string> message; ///< pieces of what is printed as errors
};

std::string sceneWith(const std::string& members)
{
    return R"({"material": ")" + std::string(kPhong) + "\", " + members + "}";
}

class Rejects : public testing::TestWithParam<Rejected>
{
};

TEST_P(Rejects, WithItsMessage)
{
    const Rejected& rejected = GetParam();
    const Workplace place;
    place.write("broken.krs", "material broken(float3 gWorldNormal, out float4 outRGBA)\n{\n    outRGBA = 1;;\n}\n");
    place.write("untyped.krs", "material untyped(uniform float3 tint, float3 gWorldNormal, out float4 outRGBA)\n"
                               "{\n"
                               "    float3 received = tint;\n"
                               "    illuminance\n"
                               "    {\n"
                               "        received += gLightDiffuseColor;\n"
                               "        received += gLightDifuseColor;\n"
                               "    }\n"
                               "    outRGBA = float4(received, 1.0);\n"
                               "}\n");
    place.write("lamp.krs", "light lamp(uniform float3 color,\n"
                            "    out float3 outLightWorldDir, out float3 outLightAmbientColor,\n"
                            "    out float3 outLightDiffuseColor, out float3 outLightSpecularColor)\n"
                            "{\n"
                            "    outLightDiffuseColor = colour;\n"
                            "}\n");
    place.write("odd.krs", "material odd(\n    uniform float3 tint,\n    uniform wrong,\n    out float4 outRGBA)\n"
                           "{\n    outRGBA = float4(tint, 1.0);\n}\n");
    std::vector<std::string> arguments = rejected.arguments;
    if (!rejected.scene.empty())
    {
        place.write("scene.json", rejected.scene);
        arguments.insert(arguments.begin(), "scene.json");
    }
    arguments.insert(arguments.end(), {"--frames", "1"});
    const Outcome outcome = place.run(KRVIEW_PROGRAM, arguments);
    EXPECT_EQ(outcome.status, rejected.status);
    EXPECT_EQ(outcome.out, "");
    for (const std::string& piece : rejected.message)
        EXPECT_NE(outcome.err.find(piece), std::string::npos) << piece << "\nin\n" << outcome.err;
}

const Rejected kRejected[] = {
    // Scenes
    {"NotJson", "{\n  \"material\": \"a.krs\",\n  \"grid\": }\n", {}, 1, {"scene.json:3:11: error: syntax error", "^"}},
    {"UnknownKey",
     sceneWith("\"shap\": \"cube\""),
     {},
     1,
     {"scene.json: error: unknown key \"shap\"; did you mean shape?"}},
    {"UnknownKeyWithin", sceneWith("\"view\": {\"yw\": 3}"), {}, 1, {"view: unknown key \"yw\"; did you mean yaw?"}},
    {"WrongType", sceneWith("\"grid\": \"many\""), {}, 1, {"grid: a whole number is wanted here"}},
    {"WrongRange", sceneWith("\"grid\": 0"), {}, 1, {"grid: a number from 1.0 to 200.0 is wanted here, and not 0"}},
    {"WrongShape", sceneWith("\"shape\": \"torus\""), {}, 1, {"shape: a shape is wanted here: cube, sphere"}},
    {"NoMaterial", "{\"shape\": \"cube\"}", {}, 1, {"scene.json: error: a \"material\" is missing"}},
    {"MissingMaterial", R"({"material": "gone.krs"})", {}, 1, {"material: there is no file 'gone.krs'"}},
    {"LightWithoutFunction", sceneWith(R"("lights": [{"key": "a"}])"), {}, 1, {"lights[0]: a \"function\" is missing"}},
    {"SameKeyTwice",
     sceneWith(R"("lights": [{"key": "a", "function": "headLight"}, {"key": "a", "function": "skyLight"}])"),
     {},
     1,
     {"lights[1]: another light has the key \"a\""}},
    {"UnknownLight",
     sceneWith(R"("lights": [{"key": "a", "function": "pointLigt"}])"),
     {},
     1,
     {"lights[0]: the libraries have no function \"pointLigt\"; did you mean pointLight"}},
    {"ParticleGrid", sceneWith(R"("shape": "particles", "grid": 2)"), {}, 1, {"a grid of them cannot be shown"}},
    // Inputs
    {"UnknownInput",
     sceneWith(R"("inputs": {"difuseColor": [1, 1, 1]})"),
     {},
     1,
     {"scene.json: error: inputs.difuseColor", "have an input \"difuseColor\"; did you mean diffuseColor"}},
    {"WrongNumberOfNumbers",
     sceneWith(R"("inputs": {"diffuseColor": [1, 1]})"),
     {},
     1,
     {"\"diffuseColor\" is of type float3 and wants 3 numbers"}},
    {"NumbersForAPicture",
     "",
     {"--material", kTextured, "--set", "colorMap=1,2"},
     1,
     {"krview: error: --set colorMap=1,2: \"colorMap\" is of type sampler2D and wants a picture"}},
    {"MissingPicture",
     "",
     {"--material", kTextured, "--set", "colorMap=nose"},
     1,
     {"there is no picture 'nose'; did you mean noise?"}},
    {"UnknownStream",
     "",
     {"--material", kTextured, "--set", "uv=textureCord"},
     1,
     {"shapes have no stream \"textureCord\"; did you mean textureCoord"}},
    // Sources
    {"EmptyStatement", "", {"--material", "broken.krs"}, 1, {"broken.krs:3:17: error: empty statement"}},
    {"BadHeader", "", {"--material", "odd.krs"}, 1, {"odd.krs:3:"}},
    {"DriverErrorInTheMaterial",
     "",
     {"--material", "untyped.krs", "--light", "a=headLight", "--light", "b=skyLight"},
     1,
     {"untyped.krs:7:9: error: the driver rejects \"received += gLightDifuseColor;\"", "fragment program"}},
    {"DriverErrorInALight",
     "",
     {"--material", kLambert, "--lib", "lamp.krs", "--light", "eye=headLight", "--light", "a=lamp"},
     1,
     {"lamp.krs:5:5: error: the driver rejects \"outLightDiffuseColor = colour;\""}},
    // Use
    {"UnknownOption", "", {"--shap", "cube"}, 2, {"krview: error:", "Try \"krview --help\"."}},
    {"WrongSize", "", {"--size", "big"}, 2, {"--size big: WxH is wanted"}},
    {"WrongLight", "", {"--light", "pointLight"}, 2, {"--light pointLight: KEY=FUNCTION is wanted"}},
    {"MissingScene", "", {"gone.json"}, 2, {"cannot read 'gone.json'"}},
    {"NoPlaceForThePicture", "", {"--screenshot", "gone/picture.png"}, 2, {"cannot write 'gone/picture.png'"}},
};

INSTANTIATE_TEST_SUITE_P(Krview, Rejects, testing::ValuesIn(kRejected),
                         [](const auto& rejected) { return rejected.param.fault; });

TEST(WithoutADisplay, SaysSoAndNothingElse)
{
    const Workplace place;
    const Outcome none = place.run(KRVIEW_PROGRAM, {}, {.environment = {{"DISPLAY", ""}}});
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.err, "krview: error: there is no display: DISPLAY is not set\n");
    EXPECT_EQ(none.out, "");
    const Outcome wrong = place.run(KRVIEW_PROGRAM, {}, {.environment = {{"DISPLAY", ":98765"}}});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.err, "krview: error: cannot open the display \":98765\"\n");

    const Outcome help = place.run(KRVIEW_PROGRAM, {"--help"}, {.environment = {{"DISPLAY", ""}}});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--screenshot"), std::string::npos);
}

} // namespace
