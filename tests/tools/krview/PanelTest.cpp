#include "Viewer.h"

#include <X11/Xatom.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

// Where things stand in the panel: rows of one height, from the left edge of the panel.
constexpr int kFirstRow = 49;
constexpr int kRowStep = 26;
constexpr int kPictureWidth = 400;
constexpr int kPictureHeight = 460;

int row(int index) { return kFirstRow + kRowStep * index; }

constexpr const char* kGrey = R"(material grey(uniform float level = 0.5 [[ float min = 0, float max = 1 ]],
    uniform float3 tint = float3(1) [[ string widget = "color" ]], float3 gWorldNormal, out float4 outRGBA)
{
    outRGBA = float4(tint * level, 1);
    illuminance { outRGBA.rgb += 0.01 * gLightDiffuseColor; }
}
)";

/// krview with its panel under a window manager, and a user at mouse and keyboard.
class Panel : public Viewer
{
public:
    void begin(const std::vector<std::string>& words)
    {
        place.write("grey.krs", kGrey);
        ASSERT_EQ(place.run("/bin/sh", {"-c", "command -v xdotool"}).status, 0);
        ASSERT_TRUE(manageWindows(manager));
        start(words, std::to_string(kPictureWidth) + 'x' + std::to_string(kPictureHeight));
        ASSERT_NE(shell, 0U);
        ASSERT_TRUE(waitFor([this] { return focus() == shell; }));
    }
    /// Has xdotool do something.
    static void act(const std::string& what) { ASSERT_EQ(std::system(("xdotool " + what).c_str()), 0); }
    /// Where something in the panel is on the screen, for xdotool.
    std::string at(int x, int y)
    {
        Window other = 0;
        int left = 0;
        int top = 0;
        XTranslateCoordinates(user, drawn, DefaultRootWindow(user), kPictureWidth + x, y, &left, &top, &other);
        return "mousemove " + std::to_string(left) + ' ' + std::to_string(top) + ' ';
    }
    /// Has krview save a picture by a real key.
    Image shown()
    {
        act("key s");
        return readSaved();
    }
    /// What krview draws with these words.
    Image drawnWith(const std::string& words)
    {
        const std::string size = std::to_string(kPictureWidth) + 'x' + std::to_string(kPictureHeight);
        EXPECT_EQ(krview(place, words + " --size " + size + " --screenshot expected.png").err, "");
        return readImage(place.path() / "expected.png");
    }
    /// What was copied, as another program pastes it.
    std::string clipboard()
    {
        const Atom property = XInternAtom(user, "PASTED", False);
        const Window window = XCreateSimpleWindow(user, DefaultRootWindow(user), 0, 0, 1, 1, 0, 0, 0);
        XConvertSelection(user, XInternAtom(user, "CLIPBOARD", False), XInternAtom(user, "UTF8_STRING", False),
                          property, window, CurrentTime);
        XEvent event = {};
        if (!waitFor([&] { return XCheckTypedWindowEvent(user, window, SelectionNotify, &event) != 0; }) ||
            event.xselection.property == None)
            return "";
        Atom type = None;
        int bits = 0;
        unsigned long count = 0;
        unsigned long rest = 0;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(user, window, property, 0, 4096, True, AnyPropertyType, &type, &bits, &count, &rest, &bytes);
        std::string text(reinterpret_cast<const char*>(bytes), count);
        XFree(bytes);
        return text;
    }
    /// The colours in the window, from the left edge of the picture.
    std::vector<unsigned long> colours(unsigned width, unsigned height)
    {
        XImage* image = XGetImage(user, drawn, 0, 0, width, height, AllPlanes, ZPixmap);
        std::vector<unsigned long> pixels;
        for (unsigned y = 0; y < height; ++y)
            for (unsigned x = 0; x < width; ++x)
                pixels.push_back(XGetPixel(image, static_cast<int>(x), static_cast<int>(y)));
        XDestroyImage(image);
        return pixels;
    }
    /// The processor time that krview has taken, in ticks of the system.
    [[nodiscard]] long ticks() const
    {
        std::istringstream file(place.read("/proc/" + std::to_string(child) + "/stat"));
        std::string word;
        long userTime = 0;
        long systemTime = 0;
        for (int i = 1; i < 14; ++i)
            file >> word;
        file >> userTime >> systemTime;
        return userTime + systemTime;
    }

    const char* manager = "openbox";
};

class ManagedPanel : public Panel, public testing::WithParamInterface<const char*>
{
};

TEST_P(ManagedPanel, SetsValuesThatCanBeSavedCopiedAndTakenBack)
{
    manager = GetParam();
    begin({"--material", "grey.krs"});
    const std::string slider = at(200, row(1));
    const Image before = shown();
    ASSERT_EQ(before.width, static_cast<unsigned>(kPictureWidth)) << "the picture does not stand beside the panel";
    EXPECT_EQ(before.bytes, drawnWith("--material grey.krs").bytes);

    // A drag goes on beyond the panel's slider, and ends at its end.
    act(slider + "mousedown 1 " + at(230, row(1)) + at(330, row(1)) + "mouseup 1");
    EXPECT_EQ(shown().bytes, drawnWith("--material grey.krs --set level=1").bytes);

    // What is typed into a field is no key of the picture's.
    act(slider + "keydown ctrl click 1 keyup ctrl");
    act("type 0.2q5");
    act("key Return");
    const Image typed = drawnWith("--material grey.krs --set level=0.25");
    EXPECT_EQ(shown().bytes, typed.bytes);

    act("key ctrl+z");
    EXPECT_EQ(shown().bytes, drawnWith("--material grey.krs --set level=1").bytes);
    act("key ctrl+shift+z");
    EXPECT_EQ(shown().bytes, typed.bytes);

    act("key a " + at(140, 19) + "click 1");
    EXPECT_TRUE(waitFor(
        [&] { return titleOf(shell) == "krview: copied the options, without axes: save the scene to keep all of it"; }))
        << titleOf(shell);
    act("key a");
    std::string options;
    EXPECT_TRUE(waitFor([&] { return (options = clipboard()).find("--set level=0.25") != std::string::npos; }))
        << options;
    act(at(50, 19) + "click 1");
    EXPECT_TRUE(says("out", "krview-1.json\n"));
    EXPECT_EQ(drawnWith("krview-1.json").bytes, typed.bytes);

    act(at(306, row(1)) + "click 1");
    EXPECT_EQ(shown().bytes, before.bytes) << "a value is not taken back";

    const long used = ticks();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_LE(ticks() - used, 2) << "it works where there is nothing to do";

    act("key Tab");
    EXPECT_EQ(shown().width, 740U) << "the panel does not go away";
    act("key q");
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(place.read("err"), "");
}

INSTANTIATE_TEST_SUITE_P(By, ManagedPanel, testing::Values("openbox", "icewm"),
                         [](const auto& name) { return std::string(name.param); });

TEST_F(Panel, AddsAndRemovesLights)
{
    begin({"--material", "grey.krs"});
    const Image before = shown();
    constexpr int kLights = 4; // behind two inputs and a button
    act(at(306, row(kLights + 1)) + "click 1");
    EXPECT_EQ(shown().bytes, drawnWith("--material grey.krs --light sky=skyLight").bytes);
    // The first in the list of lights.
    act(at(40, row(kLights + 2)) + "click 1");
    act(at(60, row(kLights + 2) + 16) + "click 1");
    EXPECT_EQ(shown().bytes, drawnWith("--material grey.krs --light sky=skyLight --light ambient=ambientLight").bytes);
    act("key ctrl+z key ctrl+z");
    EXPECT_EQ(shown().bytes, before.bytes);
}

TEST_F(Panel, RemovesTheLightOfTheShadow)
{
    const auto scene = [](const std::string& light)
    {
        return R"({"material": "grey.krs", "libraries": [")" KRENDER_SHARE R"(/lights/shadow.krs"], "lights": [)" +
               light + R"({"key": "sun", "function": "directionalLight"}]})";
    };
    std::string text = scene(R"({"key": "lamp", "function": "shadowLight", "inputs": {"intensity": 9}}, )");
    place.write("scene.json", text.insert(1, R"("shadow": {"light": "lamp"}, )"));
    place.write("after.json", scene(""));
    begin({"scene.json"});
    act(at(306, row(5)) + "click 1");
    EXPECT_EQ(shown().bytes, drawnWith("after.json").bytes);
    EXPECT_EQ(place.read("err"), "");
}

TEST_F(Panel, KeepsItsValuesWhenASourceIsReadAgain)
{
    begin({"--material", "grey.krs", "--watch"});
    act(at(200, row(1)) + "keydown ctrl click 1 keyup ctrl");
    act("type 0.75");
    act("key Return");
    std::string source = kGrey;
    source.replace(source.find("tint * level"), 12, "tint + level");
    place.write("grey.krs", source);
    EXPECT_TRUE(says("out", "krview: now showing"));
    EXPECT_EQ(shown().bytes, drawnWith("--material grey.krs --set level=0.75").bytes);
    // Without the input there is nothing to set, and nothing wrong.
    place.write("grey.krs", "material other(out float4 outRGBA) { outRGBA = float4(0, 1, 0, 1); }\n");
    EXPECT_TRUE(says("out", "krview: now showing other")) << place.read("err");
    EXPECT_EQ(place.read("err"), "");
}

TEST_F(Panel, GoesBackToWhatTheFilesSaidBefore)
{
    const std::string several = R"({"material": "grey.krs", "objects": [{}, {"position": [1, 0, 0]}]})";
    place.write("scene.json", several);
    begin({"scene.json", "--watch"});
    const Image two = shown();
    act(at(200, row(2)) + "click 1"); // below the choice of the object
    const Image changed = shown();
    EXPECT_NE(changed.bytes, two.bytes);
    place.write("scene.json", R"({"material": "grey.krs", "shape": "cube"})");
    EXPECT_TRUE(says("out", "krview: now showing grey on cube\n"));
    const Image one = drawnWith("scene.json");
    EXPECT_EQ(shown().bytes, one.bytes);
    act("key ctrl+z");
    EXPECT_NE(shown().bytes, one.bytes);
    act("key ctrl+shift+z");
    EXPECT_EQ(shown().bytes, one.bytes);
    // What is shown is what is saved, and the file's own text counts as known.
    act("key ctrl+z key ctrl+z " + at(50, 19) + "click 1");
    EXPECT_TRUE(says("out", "scene.json\n"));
    EXPECT_EQ(drawnWith("scene.json").bytes, shown().bytes);
}

TEST_F(Panel, KeepsItsValuesWhenTheSceneBreaks)
{
    const std::string good = R"({"material": "grey.krs"})";
    place.write("scene.json", good);
    begin({"scene.json", "--watch", "--set", "level=0"});
    act(at(200, row(1)) + "mousedown 1 " + at(330, row(1)) + "mouseup 1");
    const Image set = drawnWith("scene.json --set level=1");
    EXPECT_EQ(shown().bytes, set.bytes);
    place.write("scene.json", good + ',');
    EXPECT_TRUE(says("err", "error"));
    place.write("scene.json", good);
    EXPECT_TRUE(says("out", "now showing"));
    EXPECT_EQ(shown().bytes, set.bytes);

    // What is saved goes ahead of the options from then on.
    act(at(50, 19) + "click 1");
    EXPECT_TRUE(says("out", "saved scene.json\n"));
    std::string text = place.read("scene.json");
    place.write("scene.json", text.insert(1, "\"shape\": \"cube\", "));
    EXPECT_TRUE(says("out", "now showing grey on cube"));
    EXPECT_EQ(shown().bytes, drawnWith("scene.json").bytes);
}

TEST_F(Panel, ReadsTheFileAgainThatItHasSaved)
{
    begin({"--material", "grey.krs", "--watch", "-I", "parts"});
    act(at(50, 19) + "click 1");
    EXPECT_TRUE(says("out", "krview-1.json, which needs -I parts\n"));
    std::string text = place.read("krview-1.json");
    place.write("krview-1.json", text.insert(1, "\"shape\": \"cube\", "));
    EXPECT_TRUE(says("out", "now showing grey on cube"));
}

TEST_F(Panel, ChangesTheMaterial)
{
    std::filesystem::create_directory(place.path() / "materials");
    place.write("materials/broken.krs", "material broken(out float4 outRGBA) { outRGBA = nothing; }\n");
    place.write("materials/other.krs", "material other(uniform float tint = 0.3, out float4 outRGBA)\n"
                                       "{ outRGBA = float4(tint, 0, 0, 1); }\n");
    place.write("materials/grey.krs", kGrey);
    place.write("scene.json", R"({"material": "materials/grey.krs", "inputs": {"level": 1, "tint": [1, 0, 1]}})");
    begin({"scene.json"});
    const Image before = shown();
    const auto clean = colours(kPictureWidth, 40);
    act(at(60, row(8)) + "click 1"); // the section of the object
    const auto choose = [&](int file)
    {
        act(at(170, row(9)) + "click 1");
        act("key Home"); // the list gets the time to open, above the window's lower edge
        act(at(-60, 187 + 18 * file) + "click 1");
    };
    choose(0);
    EXPECT_TRUE(waitFor([&] { return colours(kPictureWidth, 40) != clean; })) << "the error is not shown";
    EXPECT_EQ(shown().bytes, before.bytes);
    choose(2);
    EXPECT_TRUE(waitFor([&] { return colours(kPictureWidth, 40) == clean; })) << "the error stays";
    // What the material has no inputs for is not saved.
    act(at(50, 19) + "click 1");
    EXPECT_TRUE(says("out", "saved scene.json\n"));
    EXPECT_EQ(shown().bytes, drawnWith("scene.json").bytes);
    EXPECT_EQ(place.read("scene.json").find("level"), std::string::npos);
    act("key ctrl+z");
    EXPECT_EQ(shown().bytes, before.bytes);
}

TEST_F(Panel, ShowsErrorsOverThePicture)
{
    begin({"--material", "grey.krs", "--watch"});
    const Image before = shown();
    const auto clean = colours(kPictureWidth, 60);
    const std::pair<std::string, std::string> broken[] = {
        {"material broken(out float4 outRGBA)\n{\n    outRGBA = nothing;\n    nothing = 1;\n}\n",
         "krview: 2 errors in grey.krs"},
        // Only a compiler that works out calls of constants sees the index.
        {"material index(out float4 outRGBA)\n{\n    float seen[4];\n    seen[0] = 1;\n"
         "    outRGBA = float4(seen[int(abs(-7.0))]);\n}\n",
         "krview: a fault of krender's in grey.krs"}};
    for (const auto& [source, title] : broken)
    {
        place.write("grey.krs", source);
        EXPECT_TRUE(waitFor([&, &title = title] { return titleOf(shell) == title; })) << titleOf(shell);
        EXPECT_TRUE(waitFor([&] { return colours(kPictureWidth, 60) != clean; })) << "nothing stands over the picture";
        EXPECT_EQ(shown().bytes, before.bytes) << "the messages are in the picture";
    }
    place.write("grey.krs", kGrey);
    EXPECT_TRUE(waitFor([&] { return colours(kPictureWidth, 60) == clean; })) << "the messages stay";
    // The rate of frames goes once there are none.
    EXPECT_TRUE(waitFor([&] { return titleOf(shell) == "krview: grey on sphere, 0 of 1 objects culled"; }))
        << titleOf(shell);
}

TEST_F(Panel, WaitsForTheMendOfWhatItBeginsWith)
{
    place.write("scene.json", "{\"material\": \"grey.krs\", \"shape\": 1}");
    begin({"scene.json", "--watch"});
    EXPECT_TRUE(waitFor([this] { return titleOf(shell) == "krview: 1 error in scene.json"; })) << titleOf(shell);
    place.write("scene.json", "{\"material\": \"grey.krs\", \"inputs\": {\"level\": 1}}");
    EXPECT_TRUE(says("out", "krview: now showing grey"));
    EXPECT_EQ(shown().bytes, drawnWith("scene.json").bytes);
}

// Mesh files are read in a process of their own, which takes its time for this one.
TEST_F(Panel, ShowsHowFarALoadIsAndCanBeClosedMeanwhile)
{
    constexpr int kSide = 700;
    std::ostringstream mesh;
    for (int i = 0; i < kSide * kSide; ++i)
        mesh << "v " << i / kSide << ' ' << i % 7 << ' ' << i % kSide << '\n';
    for (int i = 1; i < (kSide - 1) * kSide; ++i)
        if (i % kSide != 0)
            mesh << "f " << i << ' ' << i + 1 << ' ' << i + kSide + 1 << ' ' << i + kSide << '\n';
    place.write("large.obj", mesh.str());
    place.write("grey.krs", kGrey);
    if (krview(place, "--material grey.krs --mesh grey.krs --frames 1").err.find("built without") != std::string::npos)
        GTEST_SKIP() << "this krview reads no meshes";
    const std::vector<std::string> words{"--material", "grey.krs", "--mesh", "large.obj", "--stats"};
    start(words, "400x460");
    const std::string title = titleOf(shell);
    EXPECT_TRUE(title.find("krview: reading large.obj") == 0 || title.find("krview: preparing ") == 0) << title;
    const auto pixels = colours(kPictureWidth, kPictureHeight);
    EXPECT_NE(std::count(pixels.begin(), pixels.end(), pixels.front()), static_cast<long>(pixels.size()))
        << "there is no bar";
    close();
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(place.read("out") + place.read("err"), "") << "it goes on loading";

    // A key waits for the end of the load.
    start(words, "400x460");
    press(XK_q);
    EXPECT_EQ(status(), 0);
    EXPECT_NE(place.read("out").find("frames 0\n"), std::string::npos) << place.read("out");
}

} // namespace
