#include "window/WindowFixture.h"

#include <X11/Shell.h>
#include <X11/Xutil.h>

#include <memory>

namespace
{

class SimpleWindows : public WindowFixture
{
protected:
    /// The window that stands above all others.
    [[nodiscard]] Window topmost()
    {
        settle();
        Window root = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned int count = 0;
        XQueryTree(outside, DefaultRootWindow(outside), &root, &parent, &children, &count);
        const Window top = count != 0 ? children[count - 1] : 0;
        XFree(children);
        return top;
    }
};

int ignoreXError(Display*, XErrorEvent*) { return 0; }

} // namespace

TEST_F(SimpleWindows, OpenTheLibrarysOwnApplicationOnce)
{
    SimpleWindow second;
    ASSERT_EQ(second.create("other", 64, 32, nullptr, nullptr), 0);
    Widget shell = XtParent(window.windowWrapper()->widget);
    EXPECT_EQ(XtParent(second.windowWrapper()->widget), shell);

    String name = nullptr;
    String className = nullptr;
    XtGetApplicationNameAndClass(display, &name, &className);
    EXPECT_STREQ(className, "HWRender");
    EXPECT_EQ(XtClass(shell), applicationShellWidgetClass);
}

TEST_F(SimpleWindows, AreCreatedUnmappedAtTheOriginWithTheirSizeAndName)
{
    const XWindowAttributes found = attributes(id);
    EXPECT_EQ(std::pair(found.x, found.y), std::pair(0, 0));
    EXPECT_EQ(std::pair(found.width, found.height), std::pair(320, 200));
    EXPECT_EQ(found.map_state, IsUnmapped);
    EXPECT_EQ(XtClass(window.windowWrapper()->widget), topLevelShellWidgetClass);
    char* title = nullptr;
    ASSERT_TRUE(XFetchName(outside, id, &title));
    EXPECT_STREQ(title, "view");
    XFree(title);
    EXPECT_EQ(SimpleWindow::getWindow(id), &window);
    EXPECT_EQ(SimpleWindow::getHandler(id), &handler);
}

TEST_F(SimpleWindows, LiveOnTheHostsApplicationShellWhenGivenOne)
{
    int argumentCount = 0;
    XtAppContext context = nullptr;
    Widget shell = XtOpenApplication(&context, "Host", nullptr, 0, &argumentCount, nullptr, nullptr,
                                     applicationShellWidgetClass, nullptr, 0);
    {
        SimpleWindow hosted;
        ASSERT_EQ(hosted.create("hosted", 50, 40, &handler, shell), 0);
        const WindowWrapper& wrapper = *hosted.windowWrapper();
        EXPECT_EQ(XtParent(wrapper.widget), shell);
        EXPECT_EQ(wrapper.display, XtDisplay(shell));
        EXPECT_EQ(WindowWrapper(wrapper.widget, 0, wrapper.display).window, wrapper.window);
        XSync(wrapper.display, False);
        EXPECT_EQ(sizeOf(wrapper.window), std::pair(50, 40));
    }
    XtDestroyWidget(shell);
    XtDestroyApplicationContext(context);
}

TEST_F(SimpleWindows, ShowHideAndRaise)
{
    SimpleWindow other;
    ASSERT_EQ(other.create("other", 64, 32, nullptr, nullptr), 0);
    window.show();
    EXPECT_EQ(attributes(id).map_state, IsViewable);
    other.show();
    EXPECT_EQ(topmost(), other.windowWrapper()->window);
    window.setFocus();
    EXPECT_EQ(topmost(), id);
    window.hide();
    EXPECT_EQ(attributes(id).map_state, IsUnmapped);
    window.setFocus();
    EXPECT_EQ(attributes(id).map_state, IsViewable) << "setting the focus shows the window";
}

TEST_F(SimpleWindows, LeaveTheirMapEntryBehindWhenTheyEnd)
{
    auto brief = std::make_unique<SimpleWindow>();
    ASSERT_EQ(brief->create("brief", 64, 32, nullptr, nullptr), 0);
    const Window briefId = brief->windowWrapper()->window;
    const SimpleWindow* address = brief.get();
    brief.reset();
    settle();
    const auto previous = XSetErrorHandler(ignoreXError);
    XWindowAttributes none = {};
    EXPECT_FALSE(XGetWindowAttributes(outside, briefId, &none)) << "the X window is gone";
    XSetErrorHandler(previous);
    ASSERT_EQ(SimpleWindow::fWindowsMap.count(briefId), 1u);
    EXPECT_EQ(SimpleWindow::fWindowsMap[briefId], address);
    SimpleWindow::fWindowsMap.erase(briefId);
}

TEST_F(SimpleWindows, TellWhenAnotherClientDestroysThem)
{
    const auto previous = XSetErrorHandler(ignoreXError); // the widget's own end finds its window gone
    auto brief = std::make_unique<SimpleWindow>();
    ASSERT_EQ(brief->create("brief", 64, 32, &handler, nullptr), 0);
    forget();
    XDestroyWindow(outside, brief->windowWrapper()->window);
    settle();
    EXPECT_EQ(brief->processMessage(), 2);
    EXPECT_EQ(handler.calls(), Calls{});
    brief.reset();
    settle();
    XSetErrorHandler(previous);
}
