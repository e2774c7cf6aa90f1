#pragma once
#include <krender/window/WindowWrapper.h>

class MessageHandler;

/// A top-level window of a stand-alone viewer.
class KRENDER_EXPORT ISimpleWindow
{
public:
    ISimpleWindow() = default;
    ISimpleWindow(const ISimpleWindow&) = delete;
    ISimpleWindow& operator=(const ISimpleWindow&) = delete;

    /// Makes the window; it is not shown yet.
    /// @param name              the widget's name, which is also the window's title
    /// @param width             pixels, 1 to 32767
    /// @param height            pixels, 1 to 32767
    /// @param handler           told of the window's events; borrowed for the window's life; may be null
    /// @param applicationShell  the host's Xt application shell (a Widget), the parent of the window; borrowed; null
    ///                          for the library's own
    /// @return  0 when done, 2 on failure
    virtual int create(const char* name, unsigned width, unsigned height, MessageHandler* handler,
                       void* applicationShell) = 0;
    virtual void show() = 0;
    virtual void hide() = 0;
    /// Shows the window above all others.
    virtual void setFocus() = 0;
    /// Handles what is waiting on the window's display connection.
    /// @return  0 when nothing was waiting, 1 when something was, 2 when a window has been destroyed
    virtual int processMessage() = 0;
    /// The window's record, owned by the window; null for a kind of window that keeps none, as here.
    [[nodiscard]] virtual WindowWrapper* windowWrapper();
    virtual ~ISimpleWindow();
};
