#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

// Behind it, for the macros in these.
#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

/// Waits until something holds, at most a minute.
bool waitFor(const std::function<bool()>& holds)
{
    for (int i = 0; i < 6000; ++i)
    {
        if (holds())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

/// krview in the background, and another client of its display in the part of the user.
class Viewer : public testing::Test
{
public:
    void SetUp() override
    {
        place.write("material.krs", kMaterial);
        user = XOpenDisplay(nullptr);
        ASSERT_NE(user, nullptr) << "this program is to be started by with-xvfb";
    }
    void TearDown() override
    {
        for (const pid_t process : {child, windowManager})
            if (process > 0)
            {
                ::kill(process, SIGKILL);
                ::waitpid(process, nullptr, 0);
            }
        if (user)
            XCloseDisplay(user);
    }

    /// Starts krview and finds its window.
    void start(std::vector<std::string> words)
    {
        words.insert(words.begin(), KRVIEW_PROGRAM);
        words.insert(words.end(), {"--size", "120x90"});
        child = launch(words);
        // A window manager that starts has windows that end while they are looked at.
        const auto previous = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        const bool found = waitFor([this] { return findWindow(DefaultRootWindow(user)); });
        XSetErrorHandler(previous);
        ASSERT_TRUE(found) << place.read("err");
    }
    /// Starts a program in the background, with its output in the files "out" and "err".
    pid_t launch(std::vector<std::string> words)
    {
        std::vector<char*> argv;
        argv.reserve(words.size() + 1);
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        const pid_t process = ::fork();
        if (process == 0)
        {
            const int flags = O_WRONLY | O_CREAT | O_TRUNC;
            if (::chdir(place.path().c_str()) == 0)
            {
                ::dup2(::open("out", flags, 0666), STDOUT_FILENO);
                ::dup2(::open("err", flags, 0666), STDERR_FILENO);
                ::execvp(argv[0], argv.data());
            }
            ::_exit(127);
        }
        return process;
    }

    /// Finds krview's shell, which has its title, and the shell's child, which is drawn into. A window manager puts the
    /// shell into a window of its own.
    bool findWindow(Window parent)
    {
        for (const Window window : childrenOf(parent))
        {
            const std::vector<Window> inner = childrenOf(window);
            if (titleOf(window).find("krview: ") == 0 && !inner.empty())
            {
                shell = window;
                drawn = inner[0];
                return true;
            }
            if (findWindow(window))
                return true;
        }
        return false;
    }
    std::string titleOf(Window window)
    {
        char* name = nullptr;
        XFetchName(user, window, &name);
        std::string title = name ? name : "";
        XFree(name);
        return title;
    }
    std::vector<Window> childrenOf(Window window)
    {
        Window root = 0;
        Window parent = 0;
        Window* list = nullptr;
        unsigned count = 0;
        if (!XQueryTree(user, window, &root, &parent, &list, &count))
            return {};
        std::vector<Window> children(list, list + count);
        XFree(list);
        return children;
    }

    void press(KeySym key)
    {
        XEvent event = {};
        event.xkey.type = KeyPress;
        event.xkey.window = drawn;
        event.xkey.keycode = XKeysymToKeycode(user, key);
        send(event);
    }
    void mouse(int type, unsigned button, int x, int y)
    {
        XEvent event = {};
        event.type = type;
        event.xbutton.window = drawn;
        event.xbutton.x = x; // a MotionNotify has its place at the same offsets
        event.xbutton.y = y;
        if (type != MotionNotify)
            event.xbutton.button = button;
        send(event);
    }
    void send(XEvent& event)
    {
        XSendEvent(user, drawn, False, NoEventMask, &event);
        XFlush(user);
    }
    /// Has krview save a picture and reads it.
    Image save()
    {
        press(XK_s);
        return readSaved();
    }
    /// Reads the next picture that S saves, once the terminal and the title say where it is.
    Image readSaved()
    {
        const std::string path = place.path() / ("krview-" + std::to_string(++pictures) + ".png");
        EXPECT_TRUE(says("out", "krview: saved " + path + "\n"));
        EXPECT_TRUE(waitFor([&] { return titleOf(shell) == "krview: saved " + path; })) << titleOf(shell);
        return readImage(path);
    }
    /// Starts a window manager.
    /// @return  whether there is one of that name
    bool manageWindows(const char* name)
    {
        windowManager = launch({name});
        const auto isReady = [&] { return XGetSelectionOwner(user, XInternAtom(user, "WM_S0", False)) != None; };
        bool ended = false;
        EXPECT_TRUE(waitFor([&] { return (ended = ::waitpid(windowManager, nullptr, WNOHANG) != 0) || isReady(); }));
        windowManager = ended ? 0 : windowManager;
        return !ended;
    }
    Window focus()
    {
        Window window = 0;
        int revertTo = 0;
        XGetInputFocus(user, &window, &revertTo);
        return window;
    }
    /// Waits for the program's end.
    int status()
    {
        int result = 0;
        if (!waitFor([&] { return ::waitpid(child, &result, WNOHANG) == child; }))
            return -1;
        child = 0;
        return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
    }
    bool says(const char* file, const std::string& text)
    {
        return waitFor([&] { return place.read(file).find(text) != std::string::npos; });
    }

    static constexpr const char* kMaterial = "material striped(float3 gWorldPos, out float4 outRGBA)\n"
                                             "{\n"
                                             "    outRGBA = float4(step(0.0, gWorldPos), 1.0);\n"
                                             "}\n";

    Workplace place;
    Display* user = nullptr;
    Window shell = 0;
    Window drawn = 0;
    pid_t child = 0;
    pid_t windowManager = 0;
    unsigned pictures = 0;
};

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
    for (const KeySym key : {XK_a, XK_w})
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
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = shell;
    event.xclient.message_type = XInternAtom(user, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(user, "WM_DELETE_WINDOW", False));
    XSendEvent(user, shell, False, NoEventMask, &event);
    XFlush(user);
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

} // namespace
