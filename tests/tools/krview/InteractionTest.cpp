#include "Image.h"
#include "Program.h"

#include <gtest/gtest.h>

// Behind it, for the macros in these.
#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <thread>

namespace
{

/// Waits until something holds, for a minute at most.
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

/// krview in the background, with another client of its display that plays the user.
class Viewer : public testing::Test
{
protected:
    void SetUp() override
    {
        place.write("material.krs", kMaterial);
        user = XOpenDisplay(nullptr);
        ASSERT_NE(user, nullptr) << "this program is to be started by with-xvfb";
    }
    void TearDown() override
    {
        if (child > 0)
        {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
        }
        if (user)
            XCloseDisplay(user);
    }

    /// Starts the program and finds its window.
    void start(std::vector<std::string> words)
    {
        words.insert(words.begin(), KRVIEW_PROGRAM);
        words.insert(words.end(), {"--size", "120x90"});
        std::vector<char*> argv;
        argv.reserve(words.size() + 1);
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        child = ::fork();
        if (child == 0)
        {
            const int flags = O_WRONLY | O_CREAT | O_TRUNC;
            if (::chdir(place.path().c_str()) == 0)
            {
                ::dup2(::open("out", flags, 0666), STDOUT_FILENO);
                ::dup2(::open("err", flags, 0666), STDERR_FILENO);
                ::execv(argv[0], argv.data());
            }
            ::_exit(127);
        }
        ASSERT_TRUE(waitFor([this] { return findWindow(); })) << place.read("err");
    }

    /// The program's shell is the window with its title, and the one that is drawn into is the shell's child.
    bool findWindow()
    {
        for (const Window window : childrenOf(DefaultRootWindow(user)))
        {
            char* title = nullptr;
            const bool isOurs =
                XFetchName(user, window, &title) != 0 && title && std::string(title).find("krview: ") == 0;
            XFree(title);
            if (!isOurs)
                continue;
            shell = window;
            const std::vector<Window> inner = childrenOf(window);
            drawn = inner.empty() ? 0 : inner[0];
            return drawn != 0;
        }
        return false;
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
        if (type == MotionNotify)
        {
            event.xmotion.window = drawn;
            event.xmotion.x = x;
            event.xmotion.y = y;
        }
        else
        {
            event.xbutton.window = drawn;
            event.xbutton.button = button;
            event.xbutton.x = x;
            event.xbutton.y = y;
        }
        send(event);
    }
    void send(XEvent& event)
    {
        XSendEvent(user, drawn, False, NoEventMask, &event);
        XFlush(user);
    }
    /// Has the program save a picture and reads it.
    Image save()
    {
        const std::string name = "krview-" + std::to_string(++pictures) + ".png";
        press(XK_s);
        EXPECT_TRUE(waitFor([&] { return std::filesystem::exists(place.path() / name); }));
        return readImage(place.path() / name);
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

TEST_F(Viewer, KeepsThePictureWhenASourceBreaks)
{
    start({"--material", "material.krs", "--watch"});
    const Image before = save();
    ASSERT_EQ(before.width, 120u);

    place.write("material.krs", "material broken(out float4 outRGBA)\n{\n    outRGBA = nothing;\n}\n");
    EXPECT_TRUE(says("err", "material.krs:3:5: error: the driver rejects \"outRGBA = nothing;\"")) << place.read("err");
    EXPECT_EQ(save().bytes, before.bytes);
    place.write("material.krs", "material broken(out float4 outRGBA)\n{\n    outRGBA = 1;;\n}\n");
    EXPECT_TRUE(says("err", "material.krs:3:17: error: empty statement")) << place.read("err");

    place.write("material.krs",
                "material mended(out float4 outRGBA)\n{\n    outRGBA = float4(1.0, 0.0, 0.0, 1.0);\n}\n");
    EXPECT_TRUE(says("out", "krview: now showing mended on sphere")) << place.read("err");
    EXPECT_EQ(save().at(60, 45), (Image::Pixel{255, 0, 0}));
    press(XK_q);
    EXPECT_EQ(status(), 0);
}

} // namespace
