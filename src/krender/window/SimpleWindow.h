#pragma once
#include <krender/window/ISimpleWindow.h>

#include <krender/Export.h>
#include <krender/window/WindowWrapper.h>

#include <cstdint>
#include <map>

// NOLINTBEGIN(bugprone-reserved-identifier)
struct _XtAppStruct;
union _XEvent;
// NOLINTEND(bugprone-reserved-identifier)

/// The number that the next SimpleWindow takes.
extern KRENDER_EXPORT std::int32_t gWindowCount;

/// A top-level window made with the X Toolkit: a pop-up shell that passes a few events on to a MessageHandler.
///
/// The picture is drawn into a child window that the host makes and names with windowWrapper()->setFBWindow(). The window
/// keeps the child as large as itself. Without a child the handler is not called.
///
/// Keyboard. The shell does not ask window managers for the keyboard focus. A host that reads keys sets the input hint
/// itself (XSetWMHints with InputHint and True) and selects KeyPressMask on the shell.
///
/// Displays. A window with the host's application shell lives on that shell's display. Otherwise the first create() opens
/// an application of the library's own, once a process, on the display that the environment variable DISPLAY names.
/// When that fails, the toolkit prints a message and ends the process: a host that may run without a display asks
/// displayAvailable() first. No other part of the library needs a display.
///
/// Errors of the X protocol, for example about a window that another client has destroyed, end the process unless the
/// host has set a handler with XSetErrorHandler.
class KRENDER_EXPORT SimpleWindow : public ISimpleWindow
{
public:
    /// Takes the next window number; create() makes the window itself.
    SimpleWindow();

    /// Makes the window at the place (0, 0) of its screen; to be called once.
    /// @return  0 when done; 2 when there is no application shell or no pop-up shell
    int create(char* name, unsigned width, unsigned height, MessageHandler* handler, void* applicationShell) override;
    using ISimpleWindow::create;
    void show() override;
    void hide() override;
    void setFocus() override;

    /// Handles what is waiting on the display connection, whichever window it is for.
    ///
    /// When several events are waiting, the first is handled twice and the last one not at all; a host that must see
    /// every event fetches them itself and gives them to processEvent(). The call blocks when handling an event empties
    /// the queue (see processEvent() on Expose).
    /// @return  0 when nothing was waiting, 2 when the first event was a DestroyNotify, which is not handled; else 1
    int processMessage() override;
    [[nodiscard]] WindowWrapper* windowWrapper() override;

    /// Destroys the widget and its X window. The entry in fWindowsMap stays: a host that goes on handling events of the
    /// same display erases it first, or a late event for the old id reaches the destroyed object.
    ~SimpleWindow() override;

    /// Whether the display that DISPLAY names can be opened; a connection is made and closed again.
    [[nodiscard]] static bool displayAvailable();

    /// The window with an X window id, borrowed; null for an unknown id, which is entered into the map.
    [[nodiscard]] static SimpleWindow* getWindow(unsigned long id);
    /// The handler of getWindow(id), borrowed; null without a window and for a window without a handler.
    [[nodiscard]] static MessageHandler* getHandler(unsigned long id);

    /// Handles an event for a window of this class. Null and events for other windows are ignored.
    ///
    ///  - Key and button events and CirculateNotify are ignored.
    ///  - Expose, VisibilityNotify and MapNotify give the framebuffer window the window's size, call the handler's
    ///    resize() if that was a change, and then call display().
    ///  - ConfigureNotify does the same, but always calls resize().
    ///  - Everything else goes to XtDispatchEvent.
    ///
    /// An Expose first throws away everything that is queued behind it. The last event thrown away takes its place: its
    /// window is the one that is brought up to date. A second Expose in the queue is never taken off, so the call does
    /// not return once one stands at the head (only another thread can remove it). The shells do not select Expose
    /// themselves. A host that selects it fetches its events itself and answers an Expose on its own instead of passing
    /// it on: growing a window often brings several at once.
    /// @param event  borrowed; overwritten when an Expose is followed by other events
    /// @return  0
    static int processEvent(_XEvent* event);

    /// Does nothing; for hosts that must register a toolkit callback.
    static void WndProc(_WidgetRec* widget, char* clientData, char* callData); // NOLINT(readability-identifier-naming)

    /// 1 for the first window of the process, and so on.
    [[nodiscard]] std::int32_t windowNumber() const noexcept { return fWindowNumber; }

    /// The windows by their X window id. It also holds null for unknown ids that were asked for, and the addresses of
    /// windows that have ended.
    static std::map<unsigned long, SimpleWindow*> fWindowsMap; // NOLINT(readability-identifier-naming)

protected:
    /// Free for derived classes; never read here.
    std::int32_t fSpare[2] = {};

private:
    /// The shell of the library's own application, which the first call opens.
    static _WidgetRec* ownApplicationShell();

    static _XtAppStruct* fsApplicationContext;
    static _WidgetRec* fsApplicationShell;
    static bool fsApplicationOpened;

    bool fCreated = false;
    WindowWrapper fWrapper;
    MessageHandler* fHandler = nullptr;
    std::int32_t fWindowNumber = 0;
};
