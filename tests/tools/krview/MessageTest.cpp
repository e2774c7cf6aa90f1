#include "Krview.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace
{

constexpr const char* kTyped = R"(material typed(uniform int steps, uniform bool flag, uniform float size,
    out float4 outRGBA) {
    outRGBA = float4(size, size, size, 1.0);
    if (flag) outRGBA /= float(steps); })";

constexpr std::pair<const char*, const char*> kSources[] = {
    {"broken.krs", "material broken(float3 gWorldNormal, out float4 outRGBA)\n{\n    outRGBA = 1;;\n}\n"},
    {"untyped.krs", R"(material untyped(uniform float3 tint, float3 gWorldNormal, out float4 outRGBA) {
    float3 received = tint;
    illuminance {
        received += gLightDiffuseColor;
        received += gLightDifuseColor; }
    outRGBA = float4(received, 1.0); })"},
    {"lamp.krs", R"(light lamp(uniform float3 color, out float3 outLightWorldDir,
    out float3 outLightAmbientColor, out float3 outLightDiffuseColor, out float3 outLightSpecularColor) {
    outLightDiffuseColor = colour; })"},
    {"odd.krs", "material odd(\n    uniform wrong,\n    out float4 outRGBA) { outRGBA = wrong; }\n"},
    {"includes.krs", "#include \"parts.krs\"\nmaterial includes(out float4 outRGBA) { outRGBA = white(); }\n"},
    {"parts.krs", "float4 white()\n{\n    return wite;\n}\n"},
    {"lost.krs", "#include \"gone.krs\"\nmaterial lost(out float4 outRGBA) { outRGBA = float4(1); }\n"},
    {"grained.krs", R"(material grained(vertex float2 uv,
    uniform sampler2D grain [[ string file = "gone.png" ]], out float4 outRGBA) { outRGBA = texture2D(grain, uv); })"},
    // Only a compiler that works out calls of constants sees the index.
    {"index.krs", R"(material index(out float4 outRGBA)
{
    float seen[4];
    seen[0] = 1;
    outRGBA = float4(seen[int(abs(-7.0))]);
})"},
    {"unended.krs", "material a(out float4 outRGBA) { outRGBA = float4(1.0, 1.0, 1.0, 1.0); }\nmaterial b("},
    {"typed.krs", kTyped},
};

struct RejectedScene
{
    const char* fault;
    const char* text; ///< the scene file; where it begins with no brace, its members behind the material phong
    const char* message;
};

class RejectedScenes : public testing::TestWithParam<RejectedScene>
{
};

TEST_P(RejectedScenes, GetAMessage)
{
    const Workplace place;
    const std::string text = GetParam().text;
    place.write("scene.json",
                text[0] == '{' ? text : R"({"material": ")" KRENDER_SHARE "/materials/phong.krs\",\n" + text + "}");
    const Outcome outcome = krview(place, "scene.json --frames 1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.find(std::string("scene.json:") + GetParam().message), 0U) << outcome.err;
}

constexpr RejectedScene kRejectedScenes[] = {
    {"NotJson", "{\n  \"material\": \"a.krs\",\n  \"grid\": }\n", "3:11: error: syntax error"},
    {"NumberTooLarge", R"({"material": "a.krs", "spacing": 1e999})", "1:34: error: number overflow parsing '1e999'"},
    {"UnknownKey", R"("shap": "cube")", "2:1: error: unknown key \"shap\"; did you mean shape?"},
    {"UnknownKeyWithin", R"("view": {"yw": 3})", "2:10: error: view: unknown key \"yw\"; did you mean yaw?"},
    {"WrongType", R"("grid": "many")", "2:9: error: grid: a whole number is wanted here"},
    {"WrongRange", R"("grid": 0)", "2:9: error: grid: a number from 1.0 to 200.0 is wanted here, and not 0"},
    {"FarTarget", R"("view": {"target": [0, 1e100, 0]})", "2:24: error: view.target[1]: a number from -1000000.0 to"},
    {"WrongShape", R"("shape": "tube")", "2:10: error: shape: one of these is wanted here: cube, sphere"},
    {"NoObjects", R"("objects": [])", "2:12: error: objects: an object is wanted"},
    {"SameNameTwice", R"("objects": [{"name": "a"}, {"name": "a"}])", "2:28: error: objects[1]: another object has"},
    {"ShapeOfObjects", R"("shape": "cube", "objects": [{}])",
     "1:1: error: \"shape\" is a key of each of the \"objects\""},
    {"GridOfObjects", R"("grid": 2, "objects": [{}, {}])", "1:1: error: a \"grid\" is of the only object"},
    {"FlatObject", R"("objects": [{"scale": [1, 0, 1]}])", "2:23: error: objects[0].scale: numbers above 0"},
    {"UnknownPart", R"("objects": [{"parts": {"lid": {}}}])", "2:31: error: the mesh has no part \"lid\""},
    {"InputOfAnother", R"("objects": [{"inputs": {"glosiness": 1}}])",
     "2:38: error: objects[0].inputs.glosiness: neither the material \"phong\" nor its lights have an input"},
    {"ShadowOfNone", R"("shadow": {"light": "sun"})", "2:21: error: shadow.light: \"sun\" is no light of this scene"},
    {"ThreeFaces", R"("inputs": {"sky": {"faces": ["a", "b", "c"]}})", "2:29: error: inputs.sky.faces: six"},
    {"FaceOfAnotherSize", R"({"material": ")" KRENDER_SHARE R"(/materials/chrome.krs", "inputs": {"environment":
{"faces": ["noise", "noise", "noise", ")" KRENDER_SHARE R"(/scenes/bricks.png", "noise", "noise"]}}})",
     "2:1: error: inputs.environment: the picture of -y has 128 by 128 pixels, and that of +x has 256 on each side"},
    {"FaceOfOtherSides", R"({"material": ")" KRENDER_SHARE R"(/materials/chrome.krs", "inputs": {"environment":
{"faces": ["noise", "noise", "noise", "noise", "noise", ")" KRENDER_PICTURES R"(/cel.png"]}}})",
     "2:1: error: inputs.environment: the picture of -z is not square but has 640 by 480 pixels"},
    {"HeightsOfSurroundings", R"({"material": ")" KRENDER_SHARE R"(/materials/chrome.krs", "inputs": {"environment":
{"picture": "noise", "normalMap": 2}}})",
     "2:1: error: inputs.environment: \"environment\" is of type samplerCube, whose heights cannot be turned into"},
    {"MissingEnvironment", R"("environment": "surounding")",
     "2:16: error: environment: there is no picture 'surounding'; did you mean surroundings"},
    {"UnknownWrap", R"("inputs": {"map": {"picture": "noise", "wrap": "round"}})",
     "2:48: error: inputs.map.wrap: one of these is wanted here: repeat, mirror or clamp"},
    {"InputTwice", R"("inputs": {"ab": 1}, "lights": [{"key": "a", "function": "headLight", "inputs": {"b": 2}}])",
     "2:87: error: lights[0].inputs.b: inputs.ab is this input too"},
    {"NoMaterial", R"({"shape": "cube"})", "1:1: error: a \"material\" is missing"},
    {"MissingMaterial", R"({"material": "gone.krs"})", "1:14: error: material: there is no file 'gone.krs'"},
    {"MissingSourceOfALight", R"("lights": [{"key": "a", "function": "lamp", "source": "gone.krs"}])",
     "2:55: error: lights[0].source: there is no file 'gone.krs'"},
    {"LightWithoutFunction", R"("lights": [{"key": "a"}])", "2:12: error: lights[0]: a \"function\" is missing"},
    {"SameKeyTwice", R"("lights": [{"key": "a", "function": "headLight"}, {"key": "a", "function": "skyLight"}])",
     "2:51: error: lights[1]: another light has the key \"a\""},
    {"UnknownInput", R"("inputs": {"difuseColor": [1, 1, 1]})",
     "2:27: error: inputs.difuseColor: neither the material \"phong\" nor its lights have an input \"difuseColor\"; "
     "did you "
     "mean diffuseColor"},
    {"WrongNumberOfNumbers", R"("inputs": {"diffuseColor": [1, 1]})",
     "2:28: error: inputs.diffuseColor: \"diffuseColor\" is of type float3 and wants 3 numbers"},
};

INSTANTIATE_TEST_SUITE_P(Krview, RejectedScenes, testing::ValuesIn(kRejectedScenes),
                         [](const auto& rejected) { return rejected.param.fault; });

struct RejectedCommand
{
    const char* fault;
    const char* arguments;
    int status;
    const char* message; ///< the beginning
};

class RejectedCommands : public testing::TestWithParam<RejectedCommand>
{
};

TEST_P(RejectedCommands, GetAMessage)
{
    const Workplace place;
    for (const auto& [name, text] : kSources)
        place.write(name, text);
    place.write("scene.json", R"({"material": "typed.krs", "lights": [{"key": "a", "function": "pointLigt"}]})");
    const Outcome outcome = krview(place, std::string(GetParam().arguments) + " --frames 1");
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.find(GetParam().message), 0U) << outcome.err;
    EXPECT_LT(outcome.err.size(), 400U);
}

constexpr RejectedCommand kRejectedCommands[] = {
    // Inputs
    {"NumbersForAPicture", "--material " KRENDER_SHARE "/materials/textured.krs --set colorMap=1,2", 1,
     "krview: error: --set colorMap=1,2: \"colorMap\" is of type sampler2D and wants a picture"},
    {"MissingPicture", "--material " KRENDER_SHARE "/materials/textured.krs --set colorMap=nose", 1,
     "krview: error: --set colorMap=nose: there is no picture 'nose'; did you mean noise?"},
    {"UnknownStream", "--material " KRENDER_SHARE "/materials/textured.krs --set uv=textureCord", 1,
     "krview: error: --set uv=textureCord: shapes have no stream \"textureCord\"; did you mean textureCoord"},
    {"NotANumber", "--material typed.krs --set size=nan", 1,
     "krview: error: --set size=nan: \"size\" is of type float and cannot be nan\n"},
    {"TooLargeForADouble", "--material typed.krs --set size=-1e999", 1,
     "krview: error: --set size=-1e999: \"size\" is of type float and cannot be -inf\n"},
    {"TooLargeForAFloat", "--material typed.krs --set size=3.5e38", 1,
     "krview: error: --set size=3.5e38: \"size\" is of type float and cannot be 3.5e+38\n"},
    {"TooLargeForAnInt", "--material typed.krs --set steps=2147483648", 1,
     "krview: error: --set steps=2147483648: \"steps\" is of type int and cannot be 2147483648\n"},
    {"TooSmallForAnInt", "--material typed.krs --set steps=-2147483649", 1,
     "krview: error: --set steps=-2147483649: \"steps\" is of type int and cannot be -2147483649\n"},
    {"NotWhole", "--material typed.krs --set steps=1.5", 1,
     "krview: error: --set steps=1.5: \"steps\" is of type int and cannot be 1.5\n"},
    {"NeitherTrueNorFalse", "--material typed.krs --set flag=2", 1,
     "krview: error: --set flag=2: \"flag\" is of type bool and cannot be 2\n"},
    // Sources
    {"UnknownLight", "scene.json", 1,
     "scene.json:1:38: error: lights[0]: there is no light \"pointLigt\" with a body; did you mean pointLight?"},
    {"LightOfAnotherFile", "--material typed.krs --light a=lamp.krs:lam", 1,
     "lamp.krs:3:28: error: 'colour' is not declared"},
    {"LightThatAFileHasNot", "--material typed.krs --light a=typed.krs:lamp", 1,
     "krview: error: --light a=typed.krs:lamp: typed.krs has no light \"lamp\" with a body\n"},
    {"BadHeader", "--material odd.krs", 1,
     "odd.krs:2:13: error: expected the type of an argument, found 'wrong' "
     "[unexpected-token]\n    uniform wrong,\n            ^~~~~\n"},
    {"UnknownName", "--material untyped.krs", 1, "untyped.krs:5:21: error: 'gLightDifuseColor' is not declared"},
    {"ErrorInALight", "--material typed.krs --lib lamp.krs", 1, "lamp.krs:3:28: error: 'colour' is not declared"},
    {"ErrorInAnInclude", "--material includes.krs", 1, "parts.krs:3:12: error: 'wite' is not declared"},
    {"MissingInclude", "--material lost.krs", 1, "lost.krs:1:1: error: 'gone.krs' cannot be included: "},
    {"MissingPictureOfASource", "--material grained.krs", 1,
     "grained.krs:2:23: error: grain: there is no picture 'gone.png'\n"},
    {"DriverErrorBehindTheFrontEnd", "--material index.krs", 1,
     "index.krs:5:5: error: by a fault of krender's, the driver rejects \"outRGBA = float4(seen[int(abs(-7.0))]);\" "
     "in line "},
    {"PlainEmptyStatement", "--plain --material broken.krs", 1, "broken.krs:3:17: error: Empty statement"},
    {"PlainHeaderWithoutAnEnd", "--plain --material unended.krs", 1,
     "unended.krs:2:1: error: the source ends within this header: a \";\" or a body is missing\nmaterial b(\n^\n"},
    {"PlainDriverError", "--plain --material untyped.krs --light a=headLight", 1,
     "<fragment program>:72:1: error: the driver rejects it: "},
    // Use
    {"ParticleGrid", "--shape particles --grid 2", 1, "krview: error: particles are sorted by depth as one object"},
    {"UnknownOption", "--shap cube", 2, "krview: error: "},
    {"WrongSize", "--size big", 2, "krview: error: --size big: WxH is wanted"},
    {"TooSmall", "--size 8x7", 2, "krview: error: --size 8x7: WxH is wanted"},
    {"WrongLight", "--light pointLight", 2, "krview: error: --light pointLight: this is not KEY=[FILE:]FUNCTION with"},
    {"SameLightTwice", "--light a=headLight --light a=skyLight", 2, "krview: error: --light a=skyLight: another light"},
    {"NegativeFrames", "--frames -1", 2, "krview: error: --frames: Value -1 not in range 1 to 1000000000\n"},
    {"NoFrames", "--frames 0", 2, "krview: error: --frames: Value 0 not in range 1 to 1000000000\n"},
    {"MissingScene", "gone.json", 2, "krview: error: cannot read 'gone.json'"},
    {"PictureThatIsNoPng", "--screenshot x.jpg", 2, "krview: error: --screenshot x.jpg: pictures are written as PNG"},
    {"TurnOfNoPictures", "--turntable 0 turn", 2,
     "krview: error: --turntable 0: a number of pictures is wanted, from 1 to 100000\n"},
    {"ToleranceOfNothing", "--tolerance 3", 2, "krview: error: --tolerance requires --compare\n"},
    {"DifferenceThatIsNoPng", "--compare x.png --diff y.jpg", 2, "krview: error: --diff y.jpg: pictures are written"},
    {"ComparedWithNothing", "--compare gone.png", 2, "krview: error: there is no picture 'gone.png'\n"},
    {"NoFolderForThePicture", "gone.json --screenshot gone/x.PNG", 2,
     "krview: error: cannot write 'gone/x.PNG': there is no folder 'gone'\n"},
};

INSTANTIATE_TEST_SUITE_P(Krview, RejectedCommands, testing::ValuesIn(kRejectedCommands),
                         [](const auto& rejected) { return rejected.param.fault; });

TEST(Files, MayBeginWithAByteOrderMark)
{
    const Workplace place;
    place.write("typed.krs",
                std::string("\xef\xbb\xbfmaterial first(out float4 outRGBA) { outRGBA = float4(1); }\n") + kTyped);
    place.write("scene.json",
                "\xef\xbb\xbf{\"material\": \"typed.krs:typed\", \"inputs\": {\"flag\": true, \"steps\": -5}}");
    const Outcome outcome = krview(place, "scene.json --set size=1e-999 --frames 1");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(Programs, AreNotDrawnWhenTheyAreTooLarge)
{
    const Workplace place;
    std::string text = "material long(out float4 outRGBA)\n{\n    outRGBA = float4(0.0, 0.0, 0.0, 1.0);\n";
    for (int i = 0; i < 50000; ++i)
        text += "    outRGBA.x += 0.00001;\n";
    place.write("long.krs", text + "}\n");
    for (const std::string plain : {"", "--plain "})
        EXPECT_EQ(krview(place, plain + "--material long.krs --frames 1").err,
                  "krview: error: a program of \"long\" has more than 1 MB and is not drawn\n");
}

TEST(WithoutADisplay, SaysSoAndNothingElse)
{
    const Workplace place;
    const std::pair<const char*, const char*> cases[] = {
        {"", "krview: error: there is no display: DISPLAY is not set\n"},
        {":98765", "krview: error: cannot open the display \":98765\"\n"}};
    for (const auto& [display, message] : cases)
    {
        const Outcome outcome = place.run(KRVIEW_PROGRAM, {}, {.environment = {{"DISPLAY", display}}});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out + outcome.err, message);
    }
    const Outcome help = place.run(KRVIEW_PROGRAM, {"--help"}, {.environment = {{"DISPLAY", ""}}});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--screenshot"), std::string::npos);
}

} // namespace
