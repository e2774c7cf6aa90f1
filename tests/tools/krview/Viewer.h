#pragma once
#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

// Behind it, for the macros in these.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

/// Waits until something holds, at most a minute.
inline bool waitFor(const std::function<bool()>& holds)
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
    void start(std::vector<std::string> words, const std::string& size = "120x90")
    {
        words.insert(words.begin(), KRVIEW_PROGRAM);
        words.insert(words.end(), {"--size", size});
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
    /// Closes the window as window managers do.
    void close()
    {
        XEvent event = {};
        event.xclient.type = ClientMessage;
        event.xclient.window = shell;
        event.xclient.message_type = XInternAtom(user, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(XInternAtom(user, "WM_DELETE_WINDOW", False));
        XSendEvent(user, shell, False, NoEventMask, &event);
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
