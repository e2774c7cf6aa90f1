#include <krender/window/SimpleWindow.h>

#include <krender/window/MessageHandler.h>
#include <krender/window/WindowWrapper.h>

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <X11/StringDefs.h>

#include <optional>

constinit std::int32_t gWindowCount = 1;

// The early priority lets the initialisers of other files use the map.
[[gnu::init_priority(200)]] std::map<unsigned long, SimpleWindow*> SimpleWindow::fWindowsMap;
constinit _XtAppStruct* SimpleWindow::fsApplicationContext = nullptr;
constinit _WidgetRec* SimpleWindow::fsApplicationShell = nullptr;
constinit bool SimpleWindow::fsApplicationOpened = false;

namespace
{

constexpr int kDone = 0;
constexpr int kFailed = 2;

constexpr int kNothingWaiting = 0;
constexpr int kHandled = 1;
constexpr int kDestroyed = 2;

struct Size
{
    unsigned width = 0;
    unsigned height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

/// A window's size as the server knows it; empty when there is no such window.
std::optional<Size> sizeOf(Display* display, Window window)
{
    Window root = 0;
    int x = 0;
    int y = 0;
    unsigned border = 0;
    unsigned depth = 0;
    Size size;
    if (!XGetGeometry(display, window, &root, &x, &y, &size.width, &size.height, &border, &depth))
        return std::nullopt;
    return size;
}

enum class ReportSize
{
    WhenChanged,
    EveryTime
};

/// Gives the framebuffer window the size of the event's window and has the handler draw.
void updateFramebuffer(const XAnyEvent& event, ReportSize report)
{
    SimpleWindow* window = SimpleWindow::getWindow(event.window);
    if (!window)
        return;
    const std::optional<Size> size = sizeOf(event.display, event.window);
    const Window framebuffer = window->windowWrapper()->framebufferWindow;
    if (!size || framebuffer == 0)
        return;
    const std::optional<Size> framebufferSize = sizeOf(event.display, framebuffer);
    if (!framebufferSize)
        return;

    const bool changed = *framebufferSize != *size;
    if (changed)
        XResizeWindow(event.display, framebuffer, size->width, size->height);
    MessageHandler* handler = SimpleWindow::getHandler(event.window);
    if (!handler)
        return;
    if (changed || report == ReportSize::EveryTime)
        handler->resize(static_cast<int>(size->width), static_cast<int>(size->height));
    handler->display();
}

/// Moves the queued events into `event`, each over the one before, until the queue is empty.
/// Deliberate: an Expose at the head is looked at and never taken off, so it keeps the loop running.
void discardQueued(XEvent& event)
{
    Display* display = event.xany.display;
    while (XEventsQueued(display, QueuedAfterReading) > 0)
    {
        XEvent head;
        XPeekEvent(display, &head);
        if (head.type != Expose)
            XNextEvent(display, &event);
    }
}

} // namespace

SimpleWindow::SimpleWindow() : fWindowNumber(gWindowCount++) {}

SimpleWindow::~SimpleWindow()
{
    // Deliberate: fWindowsMap keeps the entry, so getWindow() goes on answering the id of a window that has ended.
    if (!fWrapper.widget)
        return;
    XtUnrealizeWidget(fWrapper.widget);
    XtDestroyWidget(fWrapper.widget);
}

bool SimpleWindow::displayAvailable()
{
    Display* display = XOpenDisplay(nullptr);
    if (display)
        XCloseDisplay(display);
    return display != nullptr;
}

_WidgetRec* SimpleWindow::ownApplicationShell()
{
    if (!fsApplicationOpened)
    {
        int argumentCount = 0;
        fsApplicationShell = XtOpenApplication(&fsApplicationContext, "HWRender", nullptr, 0, &argumentCount, nullptr,
                                               nullptr, applicationShellWidgetClass, nullptr, 0);
        fsApplicationOpened = true;
    }
    return fsApplicationShell;
}

int SimpleWindow::create(char* name, unsigned width, unsigned height, MessageHandler* handler, void* applicationShell)
{
    Widget shell = applicationShell ? static_cast<Widget>(applicationShell) : ownApplicationShell();
    if (!shell)
        return kFailed;
    Arg resources[] = {
        {XtNx, 0}, {XtNy, 0}, {XtNwidth, static_cast<XtArgVal>(width)}, {XtNheight, static_cast<XtArgVal>(height)}};
    Widget widget = XtCreatePopupShell(name, topLevelShellWidgetClass, shell, resources, XtNumber(resources));
    if (!widget)
        return kFailed;
    XtRealizeWidget(widget);
    fCreated = true;
    fWrapper = WindowWrapper(widget, XtWindow(widget), XtDisplay(widget));
    fWindowsMap[fWrapper.window] = this;
    fHandler = handler;
    return kDone;
}

void SimpleWindow::show()
{
    if (fCreated)
        XtPopup(fWrapper.widget, XtGrabNone);
}

void SimpleWindow::hide()
{
    if (fCreated)
        XtPopdown(fWrapper.widget);
}

void SimpleWindow::setFocus()
{
    show();
    if (fCreated)
        XRaiseWindow(fWrapper.display, fWrapper.window);
}

WindowWrapper* SimpleWindow::windowWrapper() { return &fWrapper; }

SimpleWindow* SimpleWindow::getWindow(unsigned long id)
{
    // Deliberate: asking for an unknown id adds a null entry to the map.
    return fWindowsMap[id];
}

MessageHandler* SimpleWindow::getHandler(unsigned long id)
{
    const SimpleWindow* window = getWindow(id);
    return window ? window->fHandler : nullptr;
}

int SimpleWindow::processEvent(_XEvent* event)
{
    if (!event || !event->xany.display || event->xany.window == 0 || !getWindow(event->xany.window))
        return kDone;
    switch (event->type)
    {
    // Deliberate: input is left to the host's own loop, and the toolkit never sees it.
    case KeyPress:
    case KeyRelease:
    case ButtonPress:
    case ButtonRelease:
    case CirculateNotify:
        break;
    case Expose:
        discardQueued(*event);
        updateFramebuffer(event->xany, ReportSize::WhenChanged);
        break;
    case VisibilityNotify:
    case MapNotify:
        updateFramebuffer(event->xany, ReportSize::WhenChanged);
        break;
    case ConfigureNotify:
        updateFramebuffer(event->xany, ReportSize::EveryTime);
        break;
    default:
        XtDispatchEvent(event);
        break;
    }
    return kDone;
}

int SimpleWindow::processMessage()
{
    Display* display = fWrapper.display;
    if (!display)
        return kNothingWaiting;
    XFlush(display);
    if (XPending(display) == 0)
        return kNothingWaiting;
    XEvent event;
    XNextEvent(display, &event);
    if (event.type == DestroyNotify)
        return kDestroyed;
    processEvent(&event);
    // Deliberate: handling comes before fetching, so the first event is handled again and the last one fetched is not
    // handled at all.
    while (XPending(display) != 0)
    {
        processEvent(&event);
        XNextEvent(display, &event);
    }
    return kHandled;
}

void SimpleWindow::WndProc(_WidgetRec*, char*, char*) {}
