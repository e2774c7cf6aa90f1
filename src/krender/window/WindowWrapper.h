#pragma once
#include <krender/Export.h>

// The X libraries' own names, declared here so that their headers and macros stay away from users.
struct _WidgetRec; // NOLINT(bugprone-reserved-identifier)
struct _XDisplay;  // NOLINT(bugprone-reserved-identifier)

/// What drawing code needs to know about a window. A record that borrows everything it names.
class KRENDER_EXPORT WindowWrapper
{
public:
    WindowWrapper() noexcept = default;
    /// @param shell     the window's widget; null for none
    /// @param xWindow   its X window; 0 takes the window of `shell`, which is 0 until `shell` is realised
    /// @param xDisplay  the connection of both
    WindowWrapper(_WidgetRec* shell, unsigned long xWindow, _XDisplay* xDisplay);
    WindowWrapper(const WindowWrapper&) noexcept = default;
    WindowWrapper& operator=(const WindowWrapper&) noexcept = default;
    virtual ~WindowWrapper();

    /// Names the child window that the host draws into; 0 for none.
    void setFBWindow(unsigned long id) noexcept { framebufferWindow = id; }
    /// Sets every field to null or 0. Nothing is destroyed.
    void release() noexcept;

    _WidgetRec* widget = nullptr;
    unsigned long window = 0;
    _XDisplay* display = nullptr;
    unsigned long framebufferWindow = 0;
};
