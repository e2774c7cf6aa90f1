#include <krender/draw/DrawProcedureList.h>
#include <krender/window/SimpleWindow.h>
#include <krender/window/TumbleWindowsHandler.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

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
    const std::int32_t first = gWindowCount;
    const SimpleWindow one;
    const SimpleWindow two;
    EXPECT_EQ(one.windowNumber(), first);
    EXPECT_EQ(two.windowNumber(), first + 1);
    EXPECT_EXIT(std::exit(first == 1 ? 0 : 1), testing::ExitedWithCode(0), "") << "no window came before";
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
