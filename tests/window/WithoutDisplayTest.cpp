#include <krender/window/SimpleWindow.h>

#include <gtest/gtest.h>

#include <cstdlib>

/// The library's window numbers before any window was constructed.
static const std::int32_t countAtStart = gWindowCount;

TEST(WithoutDisplay, TheLibrarySaysThatThereIsNoneAndOnlyCreationEndsTheProcess)
{
    unsetenv("DISPLAY");
    EXPECT_FALSE(SimpleWindow::displayAvailable());
    EXPECT_EQ(countAtStart, 1);
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
