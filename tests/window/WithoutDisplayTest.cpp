#include <krender/draw/DrawProcedureList.h>
#include <krender/window/SimpleWindow.h>
#include <krender/window/TumbleWindowsHandler.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

/// The count before any window was constructed.
const std::int32_t countAtStart = gWindowCount;

/// This program never connects to an X server.
class WithoutDisplay : public testing::Test
{
protected:
    WithoutDisplay() { unsetenv("DISPLAY"); }
};

} // namespace

TEST_F(WithoutDisplay, TheLibraryLoadsAndSaysThatThereIsNone)
{
    EXPECT_FALSE(SimpleWindow::displayAvailable());
    setenv("DISPLAY", ":no-such-display", 1);
    EXPECT_FALSE(SimpleWindow::displayAvailable());
    auto* list = new DrawProcedureList;
    EXPECT_EQ(list->item(0), nullptr);
    list->unref();
}

TEST_F(WithoutDisplay, OpeningTheLibrarysOwnApplicationEndsTheProcess)
{
    SimpleWindow window;
    EXPECT_EXIT(window.create("view", 320, 200, nullptr, nullptr), testing::ExitedWithCode(1), "Can't open display");
}

TEST_F(WithoutDisplay, AWindowThatWasNotCreatedStaysQuiet)
{
    SimpleWindow window;
    window.show();
    window.setFocus();
    window.hide();
    EXPECT_EQ(window.processMessage(), 0);
    EXPECT_EQ(window.windowWrapper()->widget, nullptr);
}

TEST_F(WithoutDisplay, WindowsAreNumberedFromOneAsTheyAreConstructed)
{
    EXPECT_EQ(countAtStart, 1);
    const std::int32_t next = gWindowCount;
    const SimpleWindow one;
    const SimpleWindow two;
    EXPECT_EQ(one.windowNumber(), next);
    EXPECT_EQ(two.windowNumber(), next + 1);
}

TEST_F(WithoutDisplay, AnUnknownIdIsEnteredIntoTheMap)
{
    const std::size_t before = SimpleWindow::fWindowsMap.size();
    EXPECT_EQ(SimpleWindow::getWindow(4711), nullptr);
    EXPECT_EQ(SimpleWindow::fWindowsMap.size(), before + 1);
    EXPECT_EQ(SimpleWindow::getWindow(4711), nullptr);
    EXPECT_EQ(SimpleWindow::getHandler(4712), nullptr);
    EXPECT_EQ(SimpleWindow::fWindowsMap.size(), before + 2);
}
