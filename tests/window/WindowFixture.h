#pragma once
#include <krender/window/MessageHandler.h>
#include <krender/window/SimpleWindow.h>

#include <gtest/gtest.h>

#include <X11/Intrinsic.h>

#include <string>
#include <utility>
#include <vector>

/// Writes down what a window tells it.
class Recorder : public MessageHandler
{
public:
    void display() override { fCalls.emplace_back("display"); }
    void windowMoved() override { fCalls.emplace_back("windowMoved"); }
    void resize(int width, int height) override
    {
        fCalls.push_back("resize " + std::to_string(width) + "x" + std::to_string(height));
    }
    void keyboard(unsigned int) override { fCalls.emplace_back("keyboard"); }
    void mouseButton(int, int, int, int) override { fCalls.emplace_back("mouseButton"); }

    /// The calls since the last look.
    std::vector<std::string> calls() { return std::exchange(fCalls, {}); }

private:
    std::vector<std::string> fCalls;
};

/// A created window of 320 x 200 with a framebuffer window of 100 x 100, and a second connection that plays the other
/// clients. An X server works one request after the other, so a round trip on both connections brings every event of
/// what was done before into the queue: nothing here waits by the clock.
class WindowFixture : public testing::Test
{
protected:
    using Calls = std::vector<std::string>;

    void SetUp() override
    {
        XInitThreads(); // one of the tests shares the connection with a thread
        ASSERT_TRUE(SimpleWindow::displayAvailable()) << "this program is to be started by with-xvfb";
        outside = XOpenDisplay(nullptr);
        ASSERT_EQ(window.create("view", 320, 200, &handler, nullptr), 0);
        display = window.windowWrapper()->display;
        id = window.windowWrapper()->window;
        framebuffer = XCreateSimpleWindow(display, id, 0, 0, 100, 100, 0, 0, 0);
        window.windowWrapper()->setFBWindow(framebuffer);
        forget();
    }
    void TearDown() override
    {
        if (outside)
            XCloseDisplay(outside);
    }

    /// Brings all events that are on their way into the queue.
    void settle()
    {
        XSync(display, False);
        XSync(outside, False);
        XSync(display, False);
    }
    /// Throws away what is queued and recorded.
    void forget()
    {
        settle();
        XSync(display, True);
        handler.calls();
    }
    /// Sends an event to a window from the other connection.
    /// @param number  told apart by it when it is a ClientMessage
    void send(int type, Window target, long number = 0)
    {
        XEvent event = {};
        event.type = type;
        event.xany.window = target;
        if (type == ClientMessage)
        {
            event.xclient.format = 32;
            event.xclient.data.l[0] = number;
        }
        XSendEvent(outside, target, False, NoEventMask, &event);
    }
    [[nodiscard]] XWindowAttributes attributes(Window ofWindow)
    {
        settle();
        XWindowAttributes result = {};
        EXPECT_TRUE(XGetWindowAttributes(outside, ofWindow, &result));
        return result;
    }
    [[nodiscard]] std::pair<int, int> sizeOf(Window ofWindow)
    {
        const XWindowAttributes found = attributes(ofWindow);
        return {found.width, found.height};
    }

    Recorder handler;
    SimpleWindow window;
    Display* outside = nullptr;
    Display* display = nullptr;
    Window id = 0;
    Window framebuffer = 0;
};
