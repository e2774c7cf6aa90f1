#include "Viewer.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace
{

TEST_F(Viewer, DoesWhatTheUserAsksFor)
{
    start({"--material", "material.krs"});
    const Image before = save();
    ASSERT_EQ(before.width, 120u);

    mouse(ButtonPress, 1, 60, 45);
    mouse(MotionNotify, 0, 90, 55);
    mouse(ButtonRelease, 1, 90, 55);
    const Image turned = save();
    EXPECT_NE(turned.bytes, before.bytes) << "dragging does not tumble";
    press(XK_r);
    EXPECT_EQ(save().bytes, before.bytes) << "a reset does not restore the view";
    std::vector<std::vector<std::uint8_t>> seen{before.bytes};
    for (const KeySym key : std::initializer_list<KeySym>{XK_a, XK_w})
    {
        press(key);
        const Image shown = save();
        EXPECT_EQ(std::count(seen.begin(), seen.end(), shown.bytes), 0) << "a key shows nothing new";
        seen.push_back(shown.bytes);
        press(key);
        EXPECT_EQ(save().bytes, before.bytes);
    }

    const auto background = [](const Image& image) { return image.at(60, 8); };
    for (int i = 0; i < 6; ++i)
        mouse(ButtonPress, 4, 60, 45);
    EXPECT_NE(background(save()), background(before)) << "the wheel does not bring the eye nearer";

    XResizeWindow(user, shell, 160, 100);
    XFlush(user);
    Image resized = save();
    EXPECT_TRUE(waitFor([&] { return (resized = save()).width == 160; }));
    EXPECT_EQ(resized.height, 100u);
    press(XK_q);
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(place.read("err"), "");
}

TEST_F(Viewer, IsSeenFromWhereTheFileSays)
{
    const std::string objects =
        R"({"material": "material.krs", "objects": [{"position": [3, 0, 0]}, {"shape": "cube"}])";
    place.write("scene.json", objects + '}');
    start({"scene.json", "--watch"});
    const Image framed = save();
    const auto drag = [this]
    {
        mouse(ButtonPress, 1, 60, 45);
        mouse(ButtonRelease, 1, 90, 55);
    };
    drag();
    press(XK_r);
    EXPECT_EQ(save().bytes, framed.bytes) << "a reset does not frame";
    drag();
    const Image turned = save();
    place.write("scene.json", objects + R"(, "axes": false})");
    EXPECT_TRUE(says("out", "now showing"));
    EXPECT_EQ(save().bytes, turned.bytes) << "the view is lost";
    place.write("scene.json", objects + R"(, "view": {"yaw": 90, "distance": 9}})");
    EXPECT_EQ(krview(place, "scene.json --size 120x90 --screenshot there.png").err, "");
    const Image there = readImage(place.path() / "there.png");
    EXPECT_TRUE(waitFor([&] { return save().bytes == there.bytes; }));
}

class Managed : public Viewer, public testing::WithParamInterface<const char*>
{
};

// The keys come from the server's test extension, so they go where the focus is and not to a window of the test's choice.
TEST_P(Managed, GetsTheKeyboardWhereverThePointerIs)
{
    const Outcome type = place.run("/bin/sh", {"-c", "command -v xdotool"});
    if (type.status != 0 || !manageWindows(GetParam()))
        GTEST_SKIP() << GetParam() << " or xdotool is not installed";
    start({"--material", "material.krs"});
    ASSERT_TRUE(waitFor([this] { return focus() == shell; })) << "the window manager does not give it the focus";
    for (const std::string pointer : {"5 5", "700 700"})
    {
        ASSERT_EQ(std::system(("xdotool mousemove " + pointer + " key s").c_str()), 0);
        EXPECT_GT(readSaved().width, 0U) << "pointer at " << pointer;
    }
    ASSERT_EQ(std::system("xdotool key q"), 0);
    EXPECT_EQ(status(), 0);

    // Larger than the screen: the window manager makes the window smaller.
    const Outcome outcome =
        krview(place, "--material material.krs --size 1500x1200 --frames 9 --screenshot picture.png");
    EXPECT_EQ(outcome.err, "");
    const Image picture = readImage(place.path() / "picture.png");
    EXPECT_EQ(std::pair(picture.width, picture.height), std::pair(1500U, 1200U));
}

INSTANTIATE_TEST_SUITE_P(By, Managed, testing::Values("openbox", "icewm"),
                         [](const auto& manager) { return std::string(manager.param); });

TEST_F(Viewer, EndsWhenItsWindowIsClosed)
{
    start({"--material", "material.krs"});
    close();
    EXPECT_EQ(status(), 0);
}

TEST_F(Viewer, EndsWhenItsWindowIsDestroyed)
{
    start({"--material", "material.krs"});
    XDestroyWindow(user, shell);
    XFlush(user);
    EXPECT_EQ(status(), 0);
}

TEST_F(Viewer, KeepsThePictureWhenASourceBreaks)
{
    start({"--material", "material.krs", "--watch", "--stats"});
    const Image before = save();
    ASSERT_EQ(before.width, 120u);

    place.write("material.krs", "material broken(out float4 outRGBA)\n{\n    outRGBA = nothing;\n}\n");
    EXPECT_TRUE(says("err", "material.krs:3:15: error: 'nothing' is not declared")) << place.read("err");
    EXPECT_EQ(save().bytes, before.bytes);

    // The included file is watched before there is one, while it is wrong, and when it is right.
    place.write("material.krs",
                "#include \"parts.krs\"\nmaterial mended(out float4 outRGBA)\n{\n    outRGBA = colour();\n}\n");
    EXPECT_TRUE(says("err", "material.krs:1:1: error: 'parts.krs' cannot be included: ")) << place.read("err");
    place.write("parts.krs", "float4 colour() { return red; }\n");
    EXPECT_TRUE(says("err", "parts.krs:1:26: error: 'red' is not declared")) << place.read("err");
    place.write("parts.krs", "float4 colour() { return float4(1, 0, 0, 1); }\n");
    EXPECT_TRUE(says("out", "krview: now showing mended on sphere")) << place.read("err");
    EXPECT_EQ(save().at(60, 45), (Image::Pixel{255, 0, 0}));
    place.write("parts.krs", "float4 colour() { return float4(0, 0, 1, 1); }\n");
    EXPECT_TRUE(waitFor([this] { return save().at(60, 45) == Image::Pixel{0, 0, 255}; }));
    press(XK_q);
    EXPECT_EQ(status(), 0);
    const std::string out = place.read("out");
    EXPECT_LT(std::stol(out.substr(out.find("frames ") + 7)), 50) << "frames without anything new to see";
}

TEST_F(Viewer, ShowsWhatPicturesShow)
{
    const auto scene = [](const char* samples)
    { return std::string(R"({"material": "material.krs", "shape": "cube", "samples": )") + samples + "}"; };
    std::map<std::string, Image> expected;
    for (const char* samples : {"1", "4"})
    {
        place.write("scene.json", scene(samples));
        // The search for leaks under sanitizers stumbles over this driver's threads.
        const Outcome picture =
            place.run(KRVIEW_PROGRAM, {"scene.json", "--size", "120x90", "--screenshot", "picture.png"},
                      {.environment = {{"ASAN_OPTIONS", "detect_leaks=0"}}});
        EXPECT_EQ(picture.err, "");
        expected[samples] = readImage(place.path() / "picture.png");
    }
    start({"scene.json", "--watch"});
    for (const char* samples : {"4", "1"})
    {
        place.write("scene.json", scene(samples));
        const Image& picture = expected[samples];
        Image saved;
        EXPECT_TRUE(waitFor([&] { return (saved = save()).bytes == picture.bytes; })) << samples;
        XImage* shown = XGetImage(user, drawn, 0, 0, 120, 90, AllPlanes, ZPixmap);
        ASSERT_NE(shown, nullptr);
        std::size_t differing = 0;
        for (int y = 0; y < 90; ++y)
            for (int x = 0; x < 120; ++x)
            {
                const unsigned long pixel = XGetPixel(shown, x, y);
                const Image::Pixel colour{static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255),
                                          static_cast<int>(pixel & 255)};
                differing += colour != saved.at(static_cast<unsigned>(x), static_cast<unsigned>(y)) ? 1 : 0;
            }
        XDestroyImage(shown);
        EXPECT_EQ(differing, 0U) << samples;
    }
}

TEST_F(Viewer, OpensNoWindowForAPicture)
{
    XSelectInput(user, DefaultRootWindow(user), SubstructureNotifyMask);
    XSync(user, False);
    EXPECT_EQ(krview(place, "--material material.krs --size 120x90 --screenshot picture.png --turntable 2 .").err, "");
    XSync(user, False);
    XEvent event;
    EXPECT_FALSE(XCheckTypedEvent(user, MapNotify, &event));
}

// Textures are kept from load to load, but not those of a file that has changed.
TEST_F(Viewer, ReadsAPictureAgainThatHasChanged)
{
    const auto paint = [&](const Image::Pixel& colour)
    { writeImage(place.path() / "p.png", 16, [&](unsigned, unsigned) { return colour; }); };
    constexpr Image::Pixel kRed{255, 0, 0};
    constexpr Image::Pixel kGreen{0, 255, 0};
    place.write("m.krs", "material m(uniform sampler2D map, out float4 outRGBA)\n"
                         "{\n    outRGBA = texture2D(map, float2(0.5));\n}\n");
    place.write("scene.json", R"({"material": "m.krs", "inputs": {"map": "p.png"}, "environment": "p.png"})");
    paint(kRed);
    start({"scene.json", "--watch"});
    const Image before = save();
    EXPECT_EQ(before.at(60, 45), kRed);
    EXPECT_EQ(before.at(2, 2), kRed);
    paint(kGreen);
    EXPECT_TRUE(waitFor([&] { return save().at(60, 45) == kGreen; }));
    EXPECT_EQ(save().at(2, 2), kGreen);
}

TEST_F(Viewer, KeepsItsPictureWhenASceneBreaks)
{
    const std::string good = R"({"material": "material.krs", "grid": 1)";
    place.write("scene.json", good + "}");
    place.write("broken.png", "no picture");
    start({"scene.json", "--watch"});
    const Image before = save();
    const std::pair<std::string, const char*> broken[] = {
        {good + ", \"spacing\": 1e999}", "scene.json:1:52: error: number overflow parsing '1e999'"},
        {good + ", \"axes\": 1}", "scene.json:1:49: error: axes: true or false is wanted here"},
        {good + ", \"inputs\": {\"none\": 1}}", "scene.json:1:60: error: inputs.none: neither"},
        {std::string(2000000, ' '), "cannot read 'scene.json': it has more than 1 MB"}};
    for (const auto& [text, message] : broken)
    {
        place.write("scene.json", text);
        EXPECT_TRUE(says("err", message)) << place.read("err");
    }
    EXPECT_EQ(save().bytes, before.bytes);
    place.write("scene.json", good + ", \"shape\": \"cube\"}");
    EXPECT_TRUE(says("out", "on cube")) << place.read("err");
}

#ifdef KRVIEW_HAS_ASSIMP
TEST_F(Viewer, ReadsAMeshAgainWhenAFileBesideItChanges)
{
    const std::string material = "material pale(out float4 outRGBA) { outRGBA = float4(1, 1, 1, 0.5); }\n";
    place.write("material.krs", material);
    place.write("m.obj", "mtllib m.mtl\nusemtl glass\nv -1 -1 0\nv 1 -1 0\nv 0 1 0\nf 1 2 3\n");
    start({"--material", "material.krs", "--mesh", "m.obj", "--watch"});
    EXPECT_EQ(save().at(60, 45), (Image::Pixel{255, 255, 255}));
    // The mesh is kept when only the material changes, and with it what it waits for.
    place.write("material.krs", material + "// the same\n");
    EXPECT_TRUE(says("out", "krview: now showing pale on m.obj")) << place.read("err");
    place.write("m.mtl", "newmtl glass\nd 0.5\n");
    EXPECT_TRUE(waitFor([this] { return save().at(60, 45)[0] < 200; }));
    place.write("m.obj", "v 0 0 0\n");
    EXPECT_TRUE(says("err", "cannot read 'm.obj': ")) << place.read("err");
    EXPECT_LT(save().at(60, 45)[0], 200);
}
#endif

} // namespace
