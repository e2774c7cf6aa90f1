// Pages that krview exports, opened in a browser and used as people use them.
#include "Browser.h"
#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace
{

/// The browser of all tests: it takes a while to start.
class Pages : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        fsProfile = std::make_unique<Workplace>();
        fsBrowser = std::make_unique<Browser>(fsProfile->path());
    }
    static void TearDownTestSuite()
    {
        fsBrowser.reset();
        fsProfile.reset();
    }

    /// Exports a scene and opens the page, in a view of a size without the panel.
    void open(const std::string& arguments, unsigned width = 640, unsigned height = 480)
    {
        const Outcome outcome = krview(fPlace, arguments + " --export page.html");
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        fsBrowser->open(fPlace.path() / "page.html", width, height, "gpu !== null");
        fsBrowser->evaluate("document.getElementById('panel').hidden = true");
    }

    /// Writes scene.json, in which SHARE stands for the folder of the shipped files.
    void writeScene(std::string text) const
    {
        for (std::size_t at; (at = text.find("SHARE")) != std::string::npos;)
            text.replace(at, 5, KRENDER_SHARE);
        fPlace.write("scene.json", text);
    }

    /// How much the open page differs from krview's picture: the mean, in levels.
    [[nodiscard]] double difference(const std::string& arguments) const
    {
        const Outcome outcome = krview(fPlace, arguments + " --screenshot krview.png");
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return meanDifference(readImage(fPlace.path() / "krview.png"), fsBrowser->picture());
    }

    [[nodiscard]] static double meanDifference(const Image& a, const Image& b)
    {
        EXPECT_EQ(a.bytes.size(), b.bytes.size());
        if (a.bytes.empty() || a.bytes.size() != b.bytes.size())
            return 256;
        double sum = 0;
        for (std::size_t i = 0; i < a.bytes.size(); ++i)
            sum += std::abs(a.bytes[i] - b.bytes[i]);
        return sum / static_cast<double>(a.bytes.size());
    }

    Workplace fPlace;
    static std::unique_ptr<Workplace> fsProfile;
    static std::unique_ptr<Browser> fsBrowser;
};

std::unique_ptr<Workplace> Pages::fsProfile;
std::unique_ptr<Browser> Pages::fsBrowser;

std::vector<std::string> sceneNames()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(KRENDER_SHARE "/scenes"))
        if (entry.path().extension() == ".json")
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

TEST_F(Pages, ShowTheShippedScenesAsKrviewDoes)
{
    for (const std::string& name : sceneNames())
    {
        const std::string scene = KRENDER_SHARE "/scenes/" + name + ".json --size 320x240";
        open(scene, 320, 240);
        EXPECT_LT(difference(scene), 0.5) << name;
        EXPECT_EQ(fsBrowser->evaluate("document.getElementById('message').textContent"), "") << name;
    }
    EXPECT_EQ(fsBrowser->requests(), 0U);
    EXPECT_EQ(fsBrowser->complaints(), "");
}

/// A scene of its own, by what the page has to get right.
struct ShownScene
{
    const char* what;
    const char* text;
};

constexpr ShownScene kShownScenes[] = {
    {"shadows, a transparent object before others, axes", R"({"objects": [
        {"shape": "plane", "material": "SHARE/materials/clay.krs", "position": [0, -1, 0], "scale": 3},
        {"name": "ball", "shape": "smooth-sphere", "material": "SHARE/materials/phong.krs", "scale": 0.7,
         "position": [-0.8, 0, 0], "rotation": [10, 20, 30]},
        {"name": "pane", "shape": "smooth-sphere", "material": "veil.krs", "position": [0.5, 0, 0.8], "transparent": true}],
        "libraries": ["SHARE/lights/shadow.krs"], "lights": [
        {"key": "lamp", "function": "shadowLight"}, {"key": "fill", "function": "ambientLight",
         "inputs": {"color": [0.1, 0.1, 0.1]}}],
        "view": {"pitch": 30, "yaw": 25, "distance": 5}, "axes": true})"},
    {"pictures of light all around", R"({"objects": [
        {"shape": "smooth-sphere", "material": "SHARE/materials/metalrough.krs", "inputs": {"sky": 0},
         "position": [-1.2, 0, 0]},
        {"name": "mirror", "shape": "smooth-sphere", "material": "SHARE/materials/chrome.krs", "position": [1.2, 0, 0]}],
        "libraries": ["SHARE/lights/environment.krs"], "lights": [{"key": "all", "function": "environmentLight"}],
        "environment": {"picture": "sun.hdr", "blur": 0.2, "turn": 40, "intensity": 0.8},
        "view": {"distance": 7}})"},
    {"lines over what is transparent", R"({"material": "veil.krs", "shape": "box", "transparent": true, "wire": true,
        "axes": true, "lights": [], "view": {"pitch": 30, "yaw": 25, "distance": 3}})"},
    {"surroundings that are no light, and what is written as it is", R"({"material": "SHARE/materials/chrome.krs",
        "shape": "shader-ball", "lights": [], "environment": {"picture": "sky"}, "encode": false,
        "view": {"distance": 5}})"},
    {"the triangles of a transparent object", R"({"material": "sides.krs", "shape": "torus", "transparent": true,
        "encode": false, "lights": [], "view": {"pitch": -70, "yaw": 200, "distance": 4}})"},
    {"settings of pictures, values of all kinds", R"({"material": "kinds.krs", "shape": "box", "lights": [],
        "inputs": {"a": {"picture": "SHARE/scenes/bricks.png", "wrap": "mirror", "filter": "nearest", "coded": false},
        "b": {"picture": "SHARE/scenes/slide.png", "wrap": "clamp"}}, "view": {"distance": 5}})"},
};

TEST_F(Pages, ShowWhatScenesMayHold)
{
    std::string sun = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 32 +X 64\n";
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x)
            sun += std::string{static_cast<char>(x * 3 + 16), static_cast<char>(y * 4 + 16), '\x60',
                               static_cast<char>(x > 20 && x < 26 && y < 12 ? 131 : 128)};
    fPlace.write("sun.hdr", sun);
    fPlace.write("veil.krs", R"(material veil(float3 gWorldNormal, out float4 outRGBA)
{
    outRGBA = float4(0.5 + 0.5 * normalize(gWorldNormal), 0.5);
})");
    fPlace.write("sides.krs", R"(material sides(float3 gWorldPos, float3 gWorldNormal, out float4 outRGBA)
{
    outRGBA = gWorldNormal.y > 0 ? float4(1, 0, 0, 0.5) : float4(0, 0, 1, 0.5);
})");
    // All types that stand in a block, ahead of and behind others.
    fPlace.write("kinds.krs", R"(material kinds(vertex float2 uv, uniform sampler2D a, uniform float f = 0.25,
    uniform matrix3 m3 = matrix3(float3(0, 1, 0), float3(0, 0, 1), float3(1, 0, 0)), uniform bool on = true,
    uniform float2 f2 = float2(3, 2.5), uniform matrix4 m4 = matrix4(0.5), uniform int3 i3 = int3(1, 2, -3),
    uniform float3 f3 = float3(0.2, 0.4, 0.9), uniform matrix2 m2 = matrix2(float2(0.2, 1), float2(-0.8, 0.3)),
    uniform int i = 2, uniform sampler2D b, uniform sampler3D grain, float3 gWorldPos, out float4 outRGBA)
{
    float2 at = mul(m2, uv * f2 * i - 1.5);
    float3 c = texture2D(a, at).xyz * mul(m3, f3) + texture2D(b, at * 0.3).xyz * f;
    c += texture3D(grain, gWorldPos).xyz * mul(m4, float4(f3, 1)).xyz * (i3.x + i3.y + i3.z + 1);
    outRGBA = float4(on ? c : float3(0), 1);
})");
    for (const ShownScene& shown : kShownScenes)
    {
        writeScene(shown.text);
        open("scene.json --size 320x240", 320, 240);
        EXPECT_LT(difference("scene.json --size 320x240"), 0.7) << shown.what;
    }
}

/// What a user does in a page, and the options with which krview shows the same.
struct Use
{
    const char* what;
    const char* script;
    const char* options;
};

constexpr Use kUses[] = {
    {"a slider", "use('range', 0, 0.9)", "--set gloss=0.9"},
    {"a number beyond its slider, within its limits", "use('number', 0, 7)", "--set gloss=2"},
    {"a colour", "use('color', 0, '#3366ff')", "--set tint=0.2,0.4,1"},
    {"a check box", "use('checkbox', 0, false)", "--set striped=0"},
    {"a choice", "(box => { box.selectedIndex = 1; fire(box); })(document.querySelector('select'))", "--set kind=5"},
    {"a number of a light", "use('range', 1, 1)", "--set sundirection=1,1,1"},
    {"resetting one", "use('range', 0, 0.9); document.querySelectorAll('.reset')[0].click()", ""},
    {"resetting all", "use('range', 0, 0.9); use('color', 0, '#3366ff'); document.getElementById('reset').click()", ""},
};

constexpr const char* kUsedMaterial = R"(material used(vertex float2 uv, float3 gWorldNormal,
    uniform float gloss = 0.5 [[ string label = "</script><script>window.broken = 1</script>", float max = 2,
                                 float min = 0, float slidermax = 1, string page = "<img src=x onerror=broken=1>" ]],
    uniform float3 tint = float3(1, 0.6, 0.2) [[ string label = "'&lt;", string widget = "color" ]],
    uniform bool striped = true [[ string help = "'><script>broken=1</script>" ]],
    uniform int kind = 2 [[ string widget = "popup", string options = "soft:2|<b>hard:5" ]],
    out float4 outRGBA)
{
    float3 lit = float3(gloss, 0.1 * gloss, 0);
    illuminance { lit += tint * gLightDiffuseColor * max(dot(gWorldNormal, gLightWorldDir), 0); }
    if (striped && fract(4 * uv.x) < 0.5)
        lit *= 0.5;
    outRGBA = float4(kind == 5 ? lit.zyx : lit, 1);
})";

TEST_F(Pages, HaveControlsForAllInputs)
{
    fPlace.write("used.krs", kUsedMaterial);
    const std::string arguments = "--material used.krs --light sun=directionalLight --set sundirection=0.2,1,1 "
                                  "--shape torus --size 320x240 ";
    for (const Use& use : kUses)
    {
        open(arguments, 320, 240);
        fsBrowser->evaluate("fire = box => box.dispatchEvent(new Event('input')); use = (type, number, value) => {"
                            "const box = document.querySelectorAll(`input[type=${type}]`)[number];"
                            "box[type === 'checkbox' ? 'checked' : 'value'] = value; fire(box); };" +
                            std::string(use.script));
        EXPECT_LT(difference(arguments + use.options), 0.5) << use.what;
    }
    EXPECT_EQ(fsBrowser->evaluate("window.broken ?? document.querySelectorAll('img, script').length"), 2);
    EXPECT_EQ(fsBrowser->evaluate("document.querySelector('.row').firstChild.data"),
              "</script><script>window.broken = 1</script>");
}

constexpr Use kUsesOfLights[] = {
    {"a lamp from elsewhere", "give('Position x', -3); give('Position y', 5); give('Position z', 2)",
     "--set keyposition=-3,5,2"},
    {"a lamp from above, another way", "give('Position x', 0); give('Position z', 0.1); give('Target x', -1)",
     "--set keyposition=0,6,0.1 --set keytarget=-1,0,0"},
    {"a wide lamp", "give('Cone', 120)", "--set keycone=120"},
    {"the sun from elsewhere", "give('Direction x', -0.7)",
     "--set sundirection=-0.7,0.8,0.5 --light sun=shadowSunLight"},
    {"the sun from above", "give('Direction x', 0); give('Direction z', 0)",
     "--set sundirection=0,0.8,0 --light sun=shadowSunLight"},
};

TEST_F(Pages, MoveLightsWithTheirShadows)
{
    writeScene(R"({"libraries": ["SHARE/lights/shadow.krs"], "objects": [
        {"shape": "plane", "material": "SHARE/materials/clay.krs", "position": [1, -1, 0], "scale": 4, "castsShadow": false},
        {"name": "ball", "shape": "smooth-sphere", "material": "SHARE/materials/phong.krs", "scale": 0.7}],
        "view": {"pitch": 30, "yaw": 25, "distance": 6}})");
    for (const Use& use : kUsesOfLights)
    {
        const bool isSun = std::string(use.options).find("sun=") != std::string::npos;
        const std::string scene = std::string("scene.json --size 320x240 ") + (isSun ? "" : "--light key=shadowLight ");
        open(scene + (isSun ? "--light sun=shadowSunLight" : ""), 320, 240);
        fsBrowser->evaluate("give = (name, value) => { const box = document.querySelector(`[type=number][aria-label="
                            "'${name}']`); box.value = value; box.dispatchEvent(new Event('input')); };" +
                            std::string(use.script));
        EXPECT_LT(difference(scene + use.options), 0.5) << use.what;
    }
}

TEST_F(Pages, TakePicturesOfTheUser)
{
    fPlace.write("shown.krs", R"(material shown(vertex float2 uv, uniform sampler2D map, out float4 outRGBA)
{
    outRGBA = float4(texture2D(map, uv).xyz, 1);
})");
    const std::string arguments =
        "--material shown.krs --shape plane --size 320x240 --light sun=directionalLight --set map=" KRENDER_SHARE;
    for (const char* first : {"/scenes/slide.png", "/scenes/studio.hdr"})
    {
        open(arguments + first, 320, 240);
        fsBrowser->choose("document.querySelector('input[type=file]')", KRENDER_SHARE "/scenes/bricks.png");
        fsBrowser->await("!document.querySelector('.reset').disabled");
        EXPECT_LT(difference(arguments + "/scenes/bricks.png"), 0.5) << first;
    }
}

TEST_F(Pages, DrawAgainWhenTheDeviceComesBack)
{
    open(KRENDER_SHARE "/scenes/still-life.json --size 320x240", 320, 240);
    const Image before = fsBrowser->picture();
    fsBrowser->evaluate("new Promise(done => { const loss = gl.getExtension('WEBGL_lose_context');"
                        "canvas.addEventListener('webglcontextlost', () => setTimeout(() => loss.restoreContext()));"
                        "canvas.addEventListener('webglcontextrestored', done); loss.loseContext(); }).then(() => 1)");
    EXPECT_EQ(meanDifference(fsBrowser->picture(), before), 0);
}

TEST_F(Pages, TurnByMouseTouchAndKeys)
{
    const std::string scene = KRENDER_SHARE "/scenes/brick-cylinder.json --size 320x240";
    open(scene, 320, 240);
    const Image start = fsBrowser->picture();
    const auto isAt = [](const char* what, double number) { EXPECT_NEAR(fsBrowser->evaluate(what), number, 1e-6); };
    const double yaw = fsBrowser->evaluate("view.yaw");
    const double distance = fsBrowser->evaluate("view.distance");
    fsBrowser->drag(160, 120, 50, 0);
    isAt("view.yaw", yaw + 20);
    EXPECT_GT(meanDifference(fsBrowser->picture(), start), 1);
    fsBrowser->turnWheel(160, 120, 100);
    isAt("Math.log(view.distance)", std::log(distance) + 0.1);
    fsBrowser->pinch(160, 120, 50, 100);
    isAt("Math.log(view.distance)", std::log(distance / 2) + 0.1);
    fsBrowser->drag(160, 120, 0, 400);
    isAt("view.pitch", 90);
    fsBrowser->pressKey("r");
    isAt("view.yaw", yaw);
    fsBrowser->evaluate("canvas.blur()"); // its frame shows where the keys go
    EXPECT_EQ(meanDifference(fsBrowser->picture(), start), 0);
    // Nothing is drawn that looks the same.
    fsBrowser->evaluate("drawn = 0; gl.drawElements = () => { ++drawn; }");
    (void)fsBrowser->picture();
    isAt("drawn", 0);
}

TEST_F(Pages, AreSmallAndWhole)
{
    open("--material " KRENDER_SHARE "/materials/phong.krs --shape smooth-sphere");
    const std::string page = fPlace.read("page.html");
    EXPECT_LT(page.size(), 60000U);
    for (const char* reference : {"src=", "href=", "url(", "http:", "https:", "import"})
        EXPECT_EQ(page.find(reference), std::string::npos) << reference;
    EXPECT_NE(page.find("default-src 'none'"), std::string::npos);
    std::size_t lines = 0;
    std::istringstream script(page.substr(page.find("<script>\n") + 9));
    for (std::string line; std::getline(script, line) && line != "</script>";)
        ++lines;
    EXPECT_GT(lines, 100U);
    EXPECT_LT(lines, 300U);
    fsBrowser->send("Emulation.setDeviceMetricsOverride",
                    {{"width", 390}, {"height", 844}, {"deviceScaleFactor", 2}, {"mobile", true}});
    fsBrowser->evaluate("document.getElementById('panel').hidden = false");
    (void)fsBrowser->picture();
    EXPECT_EQ(fsBrowser->evaluate("[canvas.width, document.documentElement.scrollWidth].join()"), "780,390");
}

struct RefusedExport
{
    const char* arguments;
    int status;
    const char* message;
};

constexpr RefusedExport kRefusedExports[] = {
    {"--export page.png", 2, "give a name that ends in .html"},
    {"--export none/page.html", 2, "cannot write 'none/page.html'"},
    {"--export page.html --screenshot a.png", 2, "writes a page and nothing else"},
    {"--plain --export page.html", 2, "--plain does not read"},
    {"--material bad.krs --export page.html", 1, "bad.krs:1:"},
    {"--material line.krs --export page.html", 1, "line.krs:1:"}, // the target has no such samplers
};

TEST(Export, WritesWholePagesOrNone)
{
    for (const RefusedExport& refused : kRefusedExports)
    {
        const Workplace place;
        place.write("bad.krs", "material bad(out float4 outRGBA) { outRGBA = nothing; }\n");
        place.write("line.krs", "material line(uniform sampler1DShadow s, out float4 outRGBA)"
                                " { outRGBA = float4(shadow1D(s, float3(0)).x); }\n");
        const Outcome outcome = krview(place, refused.arguments);
        EXPECT_EQ(outcome.status, refused.status) << refused.arguments;
        EXPECT_NE(outcome.err.find(refused.message), std::string::npos) << outcome.err;
        EXPECT_EQ(place.names(), (std::vector<std::string>{"bad.krs", "line.krs"}));
    }
}

} // namespace
