#include "window/WindowFixture.h"

#include <atomic>
#include <chrono>
#include <ctime>
#include <pthread.h>
#include <thread>

namespace
{

/// What a toolkit handler saw: the event's type, and the number that a ClientMessage was sent with.
using Dispatched = std::vector<std::pair<int, long>>;

void note(Widget, XtPointer dispatched, XEvent* event, Boolean*)
{
    static_cast<Dispatched*>(dispatched)
        ->emplace_back(event->type, event->type == ClientMessage ? event->xclient.data.l[0] : 0);
}

class ProcessEvent : public WindowFixture
{
protected:
    void SetUp() override
    {
        WindowFixture::SetUp();
        if (HasFatalFailure())
            return;
        XtAddRawEventHandler(window.windowWrapper()->widget,
                             KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask | StructureNotifyMask,
                             True, note, &dispatched);
    }

    /// Queues events that were sent, in order, and handles them.
    int process(const std::vector<std::pair<int, Window>>& events)
    {
        for (long number = 0; const auto& [type, target] : events)
            send(type, target, ++number);
        settle();
        return window.processMessage();
    }

    Dispatched dispatched;
};

} // namespace

TEST_F(ProcessEvent, FramebufferFollowsTheSizeOfItsParent)
{
    XResizeWindow(outside, id, 400, 300);
    settle();
    EXPECT_EQ(window.processMessage(), 1);
    EXPECT_EQ(handler.calls(), (Calls{"resize 400x300", "display"}));
    EXPECT_EQ(sizeOf(framebuffer), std::pair(400, 300));
    EXPECT_TRUE(dispatched.empty());

    // A move changes no size, and the handler is told one all the same.
    forget();
    XMoveWindow(outside, id, 20, 30);
    settle();
    EXPECT_EQ(window.processMessage(), 1);
    EXPECT_EQ(handler.calls(), (Calls{"resize 400x300", "display"}));
    EXPECT_EQ(window.processMessage(), 0);
}

TEST_F(ProcessEvent, ShowingReportsASizeOnlyWhenItDiffers)
{
    for (const Calls& expected : {Calls{"resize 320x200", "display"}, Calls{"display"}})
    {
        window.show();
        settle();
        EXPECT_EQ(window.processMessage(), 1);
        EXPECT_EQ(handler.calls(), expected);
        EXPECT_EQ(sizeOf(framebuffer), std::pair(320, 200));
        window.hide();
        forget();
    }
}

TEST_F(ProcessEvent, ExposureAndVisibilityDrawWhenTheHostSelectsThem)
{
    window.show();
    forget();
    XSelectInput(display, id, attributes(id).your_event_mask | ExposureMask);
    XClearArea(outside, id, 0, 0, 10, 10, True);
    settle();
    EXPECT_EQ(window.processMessage(), 1);
    EXPECT_EQ(handler.calls(), (Calls{"resize 320x200", "display"}));

    XSelectInput(display, id, VisibilityChangeMask);
    const Window cover = XCreateSimpleWindow(outside, DefaultRootWindow(outside), 0, 0, 100, 100, 0, 0, 0);
    XMapRaised(outside, cover);
    settle();
    EXPECT_EQ(window.processMessage(), 1);
    EXPECT_EQ(handler.calls(), Calls{"display"});
    EXPECT_TRUE(dispatched.empty());
}

TEST_F(ProcessEvent, WithoutAFramebufferWindowOrAHandlerNobodyIsTold)
{
    window.windowWrapper()->setFBWindow(0);
    EXPECT_EQ(process({{Expose, id}}), 1);
    EXPECT_EQ(process({{ConfigureNotify, id}}), 1);
    EXPECT_EQ(handler.calls(), Calls{});

    SimpleWindow unheard;
    ASSERT_EQ(unheard.create("unheard", 64, 32, nullptr, nullptr), 0);
    const Window child = XCreateSimpleWindow(display, unheard.windowWrapper()->window, 0, 0, 10, 10, 0, 0, 0);
    unheard.windowWrapper()->setFBWindow(child);
    forget();
    EXPECT_EQ(process({{ConfigureNotify, unheard.windowWrapper()->window}}), 1);
    EXPECT_EQ(sizeOf(child), std::pair(64, 32)) << "the framebuffer follows without a handler, too";
}

TEST_F(ProcessEvent, KeysButtonsAndCirculationReachNobody)
{
    for (const int type : {KeyPress, KeyRelease, ButtonPress, ButtonRelease, CirculateNotify})
    {
        EXPECT_EQ(process({{type, id}}), 1);
        EXPECT_EQ(handler.calls(), Calls{}) << "type " << type;
        EXPECT_TRUE(dispatched.empty()) << "type " << type;
    }
    // The toolkit would have passed them on.
    send(ButtonPress, id);
    settle();
    XEvent event;
    XNextEvent(display, &event);
    XtDispatchEvent(&event);
    EXPECT_EQ(dispatched, (Dispatched{{ButtonPress, 0}}));
}

TEST_F(ProcessEvent, LeavesAloneWhatIsNotForAWindowOfTheLibrary)
{
    XEvent event = {};
    event.type = ConfigureNotify;
    EXPECT_EQ(SimpleWindow::processEvent(nullptr), 0);
    event.xany.window = id;
    EXPECT_EQ(SimpleWindow::processEvent(&event), 0) << "no display";
    event.xany.display = display;
    event.xany.window = 0;
    EXPECT_EQ(SimpleWindow::processEvent(&event), 0);
    event.xany.window = framebuffer;
    EXPECT_EQ(SimpleWindow::processEvent(&event), 0);
    EXPECT_EQ(handler.calls(), Calls{});
    event.xany.window = id;
    EXPECT_EQ(SimpleWindow::processEvent(&event), 0);
    EXPECT_EQ(handler.calls(), (Calls{"resize 320x200", "display"}));
}

TEST_F(ProcessEvent, FirstEventIsHandledTwiceAndTheLastNotAtAll)
{
    EXPECT_EQ(process({{ClientMessage, id}, {ClientMessage, id}, {ClientMessage, id}}), 1);
    EXPECT_EQ(dispatched, (Dispatched{{ClientMessage, 1}, {ClientMessage, 1}, {ClientMessage, 2}}));
    EXPECT_EQ(window.processMessage(), 0);
    dispatched.clear();
    EXPECT_EQ(process({{ClientMessage, id}}), 1);
    EXPECT_EQ(dispatched, (Dispatched{{ClientMessage, 1}})) << "alone it is handled once";
}

TEST_F(ProcessEvent, OnlyAFirstDestroyNotifyEndsTheLoop)
{
    EXPECT_EQ(process({{ClientMessage, id}, {DestroyNotify, framebuffer}, {ClientMessage, id}}), 1);
    EXPECT_EQ(process({{DestroyNotify, framebuffer}, {ClientMessage, id}}), 2);
    EXPECT_EQ(window.processMessage(), 1) << "what came behind it is still there";
}

TEST_F(ProcessEvent, ExposeDiscardsWhatIsQueuedAndActsForTheLastOfIt)
{
    SimpleWindow other;
    Recorder otherHandler;
    ASSERT_EQ(other.create("other", 64, 32, &otherHandler, nullptr), 0);
    const Window otherId = other.windowWrapper()->window;
    other.windowWrapper()->setFBWindow(XCreateSimpleWindow(display, otherId, 0, 0, 10, 10, 0, 0, 0));
    forget();

    EXPECT_EQ(process({{Expose, id}, {ClientMessage, id}, {ConfigureNotify, otherId}}), 1);
    EXPECT_TRUE(dispatched.empty());
    EXPECT_EQ(handler.calls(), Calls{});
    EXPECT_EQ(otherHandler.calls(), (Calls{"resize 64x32", "display"}));
    EXPECT_EQ(window.processMessage(), 0);

    EXPECT_EQ(process({{Expose, id}, {ClientMessage, framebuffer}}), 1) << "a window that the library does not know";
    EXPECT_EQ(handler.calls(), Calls{});
}

TEST_F(ProcessEvent, ExposeAtTheHeadOfTheQueueKeepsTheLoopRunning)
{
    for (const int type : {Expose, ClientMessage, Expose})
        send(type, id);
    settle();

    // The loop ends only when another thread takes the second Expose off. That is done once the loop has thrown the
    // ClientMessage away and has then been busy for a while. A last message wakes the loop where it had seen the Expose
    // and finds nothing to peek at; a fault cannot hang here either, for everything else is taken off the queue.
    clockid_t busy;
    ASSERT_EQ(pthread_getcpuclockid(pthread_self(), &busy), 0);
    const auto busyMilliseconds = [busy]
    {
        timespec time = {};
        clock_gettime(busy, &time);
        return 1000.0 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
    };
    std::atomic<bool> returned = false;
    bool wasSpinning = false;
    std::vector<int> left;
    std::thread rescuer(
        [&]
        {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
            const auto waitFor = [&](auto condition)
            {
                while (!condition() && !returned && std::chrono::steady_clock::now() < deadline)
                    std::this_thread::yield();
            };
            waitFor([this] { return XEventsQueued(display, QueuedAlready) == 1; });
            const double before = busyMilliseconds();
            waitFor([&] { return busyMilliseconds() > before + 20.0; });
            wasSpinning = !returned;
            XEvent event;
            const auto any = [](Display*, XEvent*, XPointer) -> Bool { return True; };
            while (XCheckIfEvent(display, &event, any, nullptr))
                left.push_back(event.type);
            send(ClientMessage, id);
            XFlush(outside);
        });
    EXPECT_EQ(window.processMessage(), 1);
    returned = true;
    rescuer.join();
    EXPECT_TRUE(wasSpinning);
    EXPECT_EQ(left, std::vector<int>{Expose});
    EXPECT_EQ(handler.calls(), (Calls{"resize 320x200", "display"}));
}
