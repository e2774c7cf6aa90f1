#include <krender/window/SimpleWindow.h>

#include <krender/window/ISimpleWindow.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

namespace
{

/// The next window number before any window was constructed.
const std::int32_t gCountAtStart = gWindowCount;

/// A host's own kind of window.
struct HostWindow : SimpleWindow
{
    int create(char* name, unsigned, unsigned height, MessageHandler*, void*) override
    {
        return name[0] + static_cast<int>(height);
    }
    using SimpleWindow::create;
};

} // namespace

TEST(WithoutDisplay, AHostsOverrideOfCreateIsCalledForConstTextToo)
{
    HostWindow window;
    EXPECT_EQ(window.create("const", 320, 200, nullptr, nullptr), 'c' + 200);
    char name[] = "variable";
    EXPECT_EQ(static_cast<ISimpleWindow&>(window).create(name, 320, 200, nullptr, nullptr), 'v' + 200);
}

TEST(WithoutDisplay, TheLibrarySaysThatThereIsNoneAndOnlyCreationEndsTheProcess)
{
    unsetenv("DISPLAY");
    EXPECT_FALSE(SimpleWindow::displayAvailable());
    EXPECT_EQ(gCountAtStart, 1);
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
