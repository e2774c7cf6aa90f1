#pragma once
#include <krender/window/WindowWrapper.h>

#include <krender/Export.h>

class MessageHandler;

/// A top-level window of a stand-alone viewer. Whoever made it ends it with delete.
class KRENDER_EXPORT ISimpleWindow
{
public:
    ISimpleWindow() = default;
    ISimpleWindow(const ISimpleWindow&) = delete;
    ISimpleWindow& operator=(const ISimpleWindow&) = delete;

    /// Makes the window; it is not shown yet. A class that overrides this brings the form for const text back with
    /// `using ISimpleWindow::create;`.
    /// @param name              the widget's name, which is also the window's title; borrowed for the call; not null
    /// @param width             pixels, 1 to 32767
    /// @param height            pixels, 1 to 32767
    /// @param handler           told of the window's events; borrowed for the window's life; may be null
    /// @param applicationShell  the host's Xt application shell (a Widget), the parent of the window; borrowed; null
    ///                          for the library's own
    /// @return  0 when done, 2 on failure
    virtual int create(char* name, unsigned width, unsigned height, MessageHandler* handler,
                       void* applicationShell) = 0;
    /// The same for const text: hands a copy of the name to the form above.
    int create(const char* name, unsigned width, unsigned height, MessageHandler* handler, void* applicationShell);
    virtual void show() = 0;
    virtual void hide() = 0;
    /// Shows the window above all others.
    virtual void setFocus() = 0;
    /// Handles what is waiting on the window's display connection.
    /// @return  0 when nothing was waiting, 1 when something was, 2 when a window has been destroyed
    virtual int processMessage() = 0;
    /// The record of the window, owned by it. Null in this class; a class that keeps a record overrides it.
    [[nodiscard]] virtual WindowWrapper* windowWrapper();
    virtual ~ISimpleWindow();
};
