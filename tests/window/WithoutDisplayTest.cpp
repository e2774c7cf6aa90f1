#include <krender/window/SimpleWindow.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

/// The next window number before any window was constructed.
const std::int32_t kCountAtStart = gWindowCount;

/// A host's own kind of window.
struct HostWindow : SimpleWindow
{
    int create(char* name, unsigned, unsigned, MessageHandler*, void*) override
    {
        title = name;
        return 7;
    }
    using SimpleWindow::create;

    std::string title;
};

} // namespace

TEST(WithoutDisplay, AHostsOverrideOfCreateIsCalledForConstTextToo)
{
    HostWindow window;
    EXPECT_EQ(window.create("const", 320, 200, nullptr, nullptr), 7);
    EXPECT_EQ(window.title, "const");
    char name[] = "changeable";
    EXPECT_EQ(static_cast<ISimpleWindow&>(window).create(name, 320, 200, nullptr, nullptr), 7);
    EXPECT_EQ(window.title, "changeable");
}

TEST(WithoutDisplay, TheLibrarySaysThatThereIsNoneAndOnlyCreationEndsTheProcess)
{
    unsetenv("DISPLAY");
    EXPECT_FALSE(SimpleWindow::displayAvailable());
    EXPECT_EQ(kCountAtStart, 1);
    const std::int32_t next = gWindowCount;
    SimpleWindow first;
    EXPECT_EQ(first.windowNumber(), next);
    EXPECT_EQ(SimpleWindow().windowNumber(), next + 1);
    first.setFocus();
    first.hide();
    EXPECT_EQ(first.processMessage(), 0);
    EXPECT_EXIT(first.create("view", 320, 200, nullptr, nullptr), testing::ExitedWithCode(1), "Can't open display");
}

TEST(WithoutDisplay, AnUnknownIdIsEnteredIntoTheMap)
{
    const std::size_t before = SimpleWindow::fWindowsMap.size();
    EXPECT_EQ(SimpleWindow::getWindow(4711), nullptr);
    EXPECT_EQ(SimpleWindow::getHandler(4711), nullptr);
    EXPECT_EQ(SimpleWindow::fWindowsMap.size(), before + 1);
}
