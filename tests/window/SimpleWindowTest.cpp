#include <krender/window/MessageHandler.h>
#include <krender/window/SimpleWindow.h>
#include <krender/window/WindowWrapper.h>

#include <gtest/gtest.h>

#include <X11/Intrinsic.h>
#include <X11/Shell.h>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using Calls = std::vector<std::string>;
using Events = std::vector<std::pair<int, Window>>;

/// Records the calls of a window.
struct Recorder : MessageHandler
{
    void display() override { calls.emplace_back("display"); }
    void resize(int w, int h) override { calls.push_back(std::to_string(w) + "x" + std::to_string(h)); }
    void keyboard(unsigned) override { calls.emplace_back("keyboard"); }
    void mouseButton(int, int, int, int) override { calls.emplace_back("mouseButton"); }

    Calls calls;
};

/// A window of 320 x 200 with a framebuffer window of 100 x 100, and a second connection in the part of other clients.
/// An X server handles one request after the other, so a round trip on both connections brings all events of earlier
/// requests into the queue: no test waits by the clock.
class SimpleWindows : public testing::Test
{
public:
    void SetUp() override
    {
        XInitThreads(); // one of the tests shares the connection with a thread
        ASSERT_TRUE(SimpleWindow::displayAvailable()) << "this program is to be started by with-xvfb";
        outside = XOpenDisplay(nullptr);
        ASSERT_EQ(window.create("view", 320, 200, &handler, nullptr), 0);
        display = window.windowWrapper()->display;
        id = window.windowWrapper()->window;
        framebuffer = addFramebuffer(window);
        XtAddRawEventHandler(window.windowWrapper()->widget,
                             KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask | StructureNotifyMask,
                             True, note, &dispatched);
        forget();
    }
    void TearDown() override { XCloseDisplay(outside); }

    static Window addFramebuffer(SimpleWindow& to)
    {
        WindowWrapper* wrapper = to.windowWrapper();
        wrapper->setFBWindow(XCreateSimpleWindow(wrapper->display, wrapper->window, 0, 0, 100, 100, 0, 0, 0));
        return wrapper->framebufferWindow;
    }
    /// Records the type of an event that the toolkit dispatched, or the number of a ClientMessage.
    static void note(Widget, XtPointer dispatched, XEvent* event, Boolean*)
    {
        static_cast<std::vector<long>*>(dispatched)
            ->push_back(event->type == ClientMessage ? event->xclient.data.l[0] : event->type);
    }
    void settle()
    {
        XSync(display, False);
        XSync(outside, False);
        XSync(display, False);
    }
    void forget()
    {
        settle();
        XSync(display, True);
        handler.calls.clear();
        dispatched.clear();
    }
    /// Sends events from the other connection, numbered from 101.
    void send(const Events& events)
    {
        for (long number = 100; const auto& [type, target] : events)
        {
            XEvent event = {};
            event.type = type;
            event.xany.window = target;
            if (type == ClientMessage)
            {
                event.xclient.format = 32;
                event.xclient.data.l[0] = ++number;
            }
            XSendEvent(outside, target, False, NoEventMask, &event);
        }
        XFlush(outside);
    }
    int processQueued()
    {
        settle();
        return window.processMessage();
    }
    XWindowAttributes attributes(Window of)
    {
        settle();
        XWindowAttributes result = {};
        XGetWindowAttributes(outside, of, &result);
        return result;
    }
    std::pair<int, int> sizeOf(Window of) { return {attributes(of).width, attributes(of).height}; }
    bool exists(Window sought)
    {
        const auto previous = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        const bool found = attributes(sought).root != 0;
        XSetErrorHandler(previous);
        return found;
    }

    Recorder handler;
    SimpleWindow window;
    Display* outside = nullptr;
    Display* display = nullptr;
    Window id = 0;
    Window framebuffer = 0;
    std::vector<long> dispatched;
};

} // namespace

TEST_F(SimpleWindows, ShareTheLibrarysApplicationOrLiveInTheHosts)
{
    Widget shell = XtParent(window.windowWrapper()->widget);
    String name = nullptr;
    String className = nullptr;
    XtGetApplicationNameAndClass(display, &name, &className);
    EXPECT_STREQ(className, "HWRender");
    Widget hostShell = XtAppCreateShell("host", "Host", applicationShellWidgetClass, display, nullptr, 0);
    for (const auto& [given, parent] : {std::pair<Widget, Widget>(nullptr, shell), {hostShell, hostShell}})
    {
        auto owner = std::make_unique<SimpleWindow>();
        SimpleWindow& second = *owner;
        ASSERT_EQ(second.create("second", 50, 40, &handler, given), 0);
        const WindowWrapper& wrapper = *second.windowWrapper();
        EXPECT_EQ(XtParent(wrapper.widget), parent);
        WindowWrapper copy(wrapper.widget, 0, display);
        EXPECT_EQ(copy.window, wrapper.window);
        copy.setFBWindow(7);
        copy.release();
        EXPECT_TRUE(!copy.widget && copy.window == 0 && !copy.display && copy.framebufferWindow == 0);
        EXPECT_EQ(sizeOf(wrapper.window), std::pair(50, 40));
        EXPECT_EQ(XtNameToWidget(parent, "second"), wrapper.widget);
        EXPECT_EQ(SimpleWindow::getWindow(wrapper.window), &second);
        EXPECT_EQ(SimpleWindow::getHandler(wrapper.window), &handler);
        const Window secondId = wrapper.window;
        EXPECT_TRUE(exists(secondId));
        owner.reset();
        EXPECT_FALSE(exists(secondId)) << "the X window outlives its object";
        EXPECT_EQ(XtNameToWidget(parent, "second"), nullptr) << "the widget does";
    }
    XtDestroyWidget(hostShell);
}

TEST_F(SimpleWindows, ShowHideAndRaise)
{
    EXPECT_EQ(attributes(id).map_state, IsUnmapped) << "created, not shown";
    window.show();
    EXPECT_EQ(attributes(id).map_state, IsViewable);
    const Window above = XCreateSimpleWindow(outside, DefaultRootWindow(outside), 0, 0, 400, 300, 0, 0, 0);
    XMapRaised(outside, above);
    XSync(outside, False);
    window.setFocus();
    settle();
    Window topmost = 0;
    int ignored = 0;
    XTranslateCoordinates(outside, attributes(id).root, attributes(id).root, 5, 5, &ignored, &ignored, &topmost);
    EXPECT_EQ(topmost, id);
    window.hide();
    EXPECT_EQ(attributes(id).map_state, IsUnmapped);
    window.setFocus();
    EXPECT_EQ(attributes(id).map_state, IsViewable) << "setting the focus shows the window";
}

TEST_F(SimpleWindows, DestructionByAnotherClientIsReportedAndTheMapEntryStays)
{
    const auto previous = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    auto* brief = new SimpleWindow;
    const void* address = brief;
    ASSERT_EQ(brief->create("brief", 64, 32, &handler, nullptr), 0);
    const Window briefId = brief->windowWrapper()->window;
    forget();
    XDestroyWindow(outside, briefId);
    EXPECT_EQ(processQueued(), 2);
    delete brief;
    EXPECT_EQ(SimpleWindow::fWindowsMap.at(briefId), address);
    SimpleWindow::fWindowsMap.erase(briefId);
    settle();
    XSetErrorHandler(previous);
}

TEST_F(SimpleWindows, FramebufferFollowsItsParentAndOnlyConfigureNotifyReportsAnUnchangedSize)
{
    window.show();
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(handler.calls, (Calls{"320x200", "display"}));
    window.hide();
    forget();
    window.show();
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(handler.calls, Calls{"display"});
    forget();
    XResizeWindow(outside, id, 400, 300);
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(sizeOf(framebuffer), std::pair(400, 300));
    XMoveWindow(outside, id, 20, 30);
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(handler.calls, (Calls{"400x300", "display", "400x300", "display"}));

    forget();
    XSelectInput(display, id, ExposureMask);
    XClearArea(outside, id, 0, 0, 10, 10, True);
    EXPECT_EQ(processQueued(), 1);
    send({{VisibilityNotify, id}});
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(handler.calls, (Calls{"display", "display"}));
    EXPECT_TRUE(dispatched.empty());

    window.windowWrapper()->setFBWindow(0);
    send({{ConfigureNotify, id}});
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(handler.calls.size(), 2u) << "without a framebuffer window the handler is not called";
}

TEST_F(SimpleWindows, KeysButtonsAndCirculationAreIgnored)
{
    for (const int type : {KeyPress, KeyRelease, ButtonPress, ButtonRelease, CirculateNotify})
    {
        send({{type, id}});
        EXPECT_EQ(processQueued(), 1);
        EXPECT_TRUE(handler.calls.empty() && dispatched.empty()) << "type " << type;
    }
    XEvent event = {};
    EXPECT_EQ(SimpleWindow::processEvent(nullptr), 0);
    EXPECT_EQ(SimpleWindow::processEvent(&event), 0) << "no display, no window";
    send({{UnmapNotify, framebuffer}, {UnmapNotify, id}, {UnmapNotify, id}});
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(dispatched, std::vector<long>{UnmapNotify}) << "the toolkit gets the rest, of known windows";
    SimpleWindow::fWindowsMap[id] = nullptr;
    send({{UnmapNotify, id}});
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(dispatched.size(), 1U) << "of the toolkit's windows, only those in the map count";
}

TEST_F(SimpleWindows, FirstEventIsHandledTwiceAndTheLastNotAtAll)
{
    send({{ClientMessage, id}, {DestroyNotify, framebuffer}, {ClientMessage, id}, {ClientMessage, id}});
    EXPECT_EQ(processQueued(), 1) << "only a DestroyNotify that comes first is reported";
    EXPECT_EQ(dispatched, (std::vector<long>{101, 101, 102}));
    EXPECT_EQ(window.processMessage(), 0);
}

TEST_F(SimpleWindows, ExposeDiscardsWhatIsQueuedAndActsForTheLastOfIt)
{
    Recorder otherHandler;
    SimpleWindow other;
    ASSERT_EQ(other.create("other", 64, 32, &otherHandler, nullptr), 0);
    addFramebuffer(other);
    forget();
    send({{Expose, id}, {ClientMessage, id}, {ConfigureNotify, other.windowWrapper()->window}});
    EXPECT_EQ(processQueued(), 1);
    EXPECT_EQ(window.processMessage(), 0);
    EXPECT_TRUE(handler.calls.empty() && dispatched.empty());
    EXPECT_EQ(otherHandler.calls, (Calls{"64x32", "display"}));
}

TEST_F(SimpleWindows, ExposeAtTheHeadOfTheQueueKeepsTheLoopRunning)
{
    send({{Expose, id}, {ClientMessage, id}, {Expose, id}});
    settle();
    // The loop ends only when another thread takes the second Expose off. The rescuer does so once the loop has thrown
    // the ClientMessage away and has had time to end by itself. Its last message wakes a loop that waits for an event to
    // peek at.
    std::atomic<bool> returned = false;
    bool wasSpinning = false;
    std::vector<int> left;
    std::thread rescuer(
        [&]
        {
            while (XEventsQueued(display, QueuedAlready) != 1 && !returned)
                std::this_thread::yield();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            wasSpinning = !returned;
            XEvent event;
            while (XCheckIfEvent(
                display, &event, [](Display*, XEvent*, XPointer) -> Bool { return True; }, nullptr))
                left.push_back(event.type);
            send({{ClientMessage, id}});
        });
    EXPECT_EQ(window.processMessage(), 1);
    returned = true;
    rescuer.join();
    EXPECT_TRUE(wasSpinning);
    EXPECT_EQ(left, std::vector<int>{Expose});
    EXPECT_EQ(handler.calls, (Calls{"320x200", "display"}));
}
