#include "GlWindow.h"

#include "DisplayError.h"
#include "GlxContext.h"

#include <krview/stage/View.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>
#include <X11/keysym.h>
#include <epoxy/glx.h>
#include <poll.h>

#include <array>
#include <cstddef>

namespace
{

/// Of the pointer's shapes, in their order.
constexpr std::array<unsigned, 4> kPointerGlyphs{XC_left_ptr, XC_xterm, XC_hand2, XC_sb_h_double_arrow};
static_assert(kPointerGlyphs.size() == static_cast<std::size_t>(PointerShape::Horizontal) + 1);

/// What a key types, in UTF-8; empty for nothing.
std::string typedText(XKeyEvent& event)
{
    std::array<char, 8> latin{};
    KeySym symbol = NoSymbol;
    const int length = XLookupString(&event, latin.data(), static_cast<int>(latin.size()), &symbol, nullptr);
    // Key symbols from here on are characters of Unicode; the library itself types those of Latin-1 alone.
    constexpr KeySym kUnicode = 0x1000000;
    const unsigned long code = symbol > kUnicode ? symbol - kUnicode
                               : length == 1     ? static_cast<unsigned char>(latin[0])
                                                 : 0;
    const auto tail = [code](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3f)); };
    if (code < 0x20 || code == 0x7f || code > 0x10ffff)
        return "";
    if (code < 0x80)
        return {static_cast<char>(code)};
    if (code < 0x800)
        return {static_cast<char>(0xc0 | code >> 6), tail(0)};
    if (code < 0x10000)
        return {static_cast<char>(0xe0 | code >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xf0 | code >> 18), tail(12), tail(6), tail(0)};
}

KeyStroke strokeOf(XKeyEvent& event)
{
    const auto key = static_cast<unsigned>(XLookupKeysym(&event, 0));
    // The state is that before the event, so a modifier tells of itself.
    const auto has = [&](unsigned modifier, unsigned left, unsigned right)
    { return key == left || key == right ? event.type == KeyPress : (event.state & modifier) != 0; };
    return {.key = key,
            .isDown = event.type == KeyPress,
            .hasShift = has(ShiftMask, XK_Shift_L, XK_Shift_R),
            .hasControl = has(ControlMask, XK_Control_L, XK_Control_R),
            .hasAlt = has(Mod1Mask, XK_Alt_L, XK_Alt_R),
            .text = event.type == KeyPress ? typedText(event) : ""};
}

} // namespace

struct GlWindow::X
{
    Display* display = nullptr;
    Window shell = 0;
    Window child = 0;
    Colormap colours = 0;
    std::unique_ptr<GlContext> context;
    std::array<Cursor, kPointerGlyphs.size()> pointers{};
    Atom closing = 0;
    Atom title = 0;
    Atom utf8 = 0;
};

GlWindow::Size GlWindow::displaySize()
{
    Display* display = XOpenDisplay(nullptr);
    if (!display)
        throw noDisplay();
    const int screen = DefaultScreen(display);
    const Size size{static_cast<unsigned>(DisplayWidth(display, screen)),
                    static_cast<unsigned>(DisplayHeight(display, screen))};
    XCloseDisplay(display);
    return size;
}

GlWindow::GlWindow(const std::string& title, const Size& size, GraphicsApi api, WindowHandler& handler)
    : fHandler(handler), fX(std::make_unique<X>())
{
    noteXErrors();
    if (fWindow.create(title.c_str(), size.width, size.height, &handler, nullptr) != 0)
        throw DisplayError("cannot make a window");
    X& x = *fX;
    x.display = fWindow.windowWrapper()->display;
    x.shell = fWindow.windowWrapper()->window;
    x.closing = XInternAtom(x.display, "WM_DELETE_WINDOW", False);
    x.title = XInternAtom(x.display, "_NET_WM_NAME", False);
    x.utf8 = XInternAtom(x.display, "UTF8_STRING", False);
    fClipboard.emplace(x.display, x.shell);
    createChild(size, api);
    selectShellEvents();
    setTitle(title);

    fWindow.windowWrapper()->setFBWindow(x.child);
    handler.resize(static_cast<int>(size.width), static_cast<int>(size.height));
    fWindow.show();
}

void GlWindow::createChild(const Size& size, GraphicsApi api)
{
    X& x = *fX;
    GLXFBConfig config = chooseGlxConfig(x.display, GLX_WINDOW_BIT);
    XVisualInfo* visual = glXGetVisualFromFBConfig(x.display, config);
    if (!visual)
        throw DisplayError("the display cannot show what OpenGL draws");
    XSetWindowAttributes attributes = {};
    attributes.colormap = x.colours = XCreateColormap(x.display, x.shell, visual->visual, AllocNone);
    attributes.event_mask = ExposureMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask | LeaveWindowMask;
    x.child = XCreateWindow(x.display, x.shell, 0, 0, size.width, size.height, 0, visual->depth, InputOutput,
                            visual->visual, CWColormap | CWBorderPixel | CWEventMask, &attributes);
    XFree(visual);
    for (std::size_t i = 0; i < x.pointers.size(); ++i)
        x.pointers[i] = XCreateFontCursor(x.display, kPointerGlyphs[i]);
    XMapWindow(x.display, x.child);
    x.context = std::make_unique<GlxContext>(x.display, config, x.child, api);
}

/// Has the keys sent to the shell, and a message when the user closes the window.
void GlWindow::selectShellEvents()
{
    X& x = *fX;
    // A window manager gives the keyboard focus to the shell if it asks for it. Key events come to the shell even while
    // the pointer is in the child, which does not select them.
    XWindowAttributes shell = {};
    XGetWindowAttributes(x.display, x.shell, &shell);
    XSelectInput(x.display, x.shell, shell.your_event_mask | KeyPressMask | KeyReleaseMask | FocusChangeMask);
    XWMHints* const set = XGetWMHints(x.display, x.shell);
    XWMHints hints = set ? *set : XWMHints{};
    if (set)
        XFree(set);
    hints.flags |= InputHint;
    hints.input = True;
    XSetWMHints(x.display, x.shell, &hints);
    XSetWMProtocols(x.display, x.shell, &x.closing, 1);
}

GlWindow::~GlWindow()
{
    X& x = *fX;
    x.context.reset();
    SimpleWindow::fWindowsMap.erase(x.shell);
    for (const Cursor pointer : x.pointers)
        XFreeCursor(x.display, pointer);
    XDestroyWindow(x.display, x.child);
    XFreeColormap(x.display, x.colours);
}

void GlWindow::setTitle(const std::string& title)
{
    XStoreName(fX->display, fX->shell, title.c_str());
    XChangeProperty(fX->display, fX->shell, fX->title, fX->utf8, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(title.data()), static_cast<int>(title.size()));
}

void GlWindow::setPointer(PointerShape shape)
{
    XDefineCursor(fX->display, fX->child, fX->pointers[static_cast<std::size_t>(shape)]);
}

void GlWindow::swapBuffers() { glXSwapBuffers(fX->display, fX->child); }

bool GlWindow::processEvents(int milliseconds)
{
    if (XPending(fX->display) == 0)
    {
        pollfd connection{ConnectionNumber(fX->display), POLLIN, 0};
        ::poll(&connection, 1, milliseconds);
    }
    while (fOpen && XPending(fX->display) != 0)
    {
        XEvent event;
        XNextEvent(fX->display, &event);
        process(&event);
    }
    return fOpen;
}

void GlWindow::process(void* anyEvent)
{
    XEvent& event = *static_cast<XEvent*>(anyEvent);
    const auto button = [&](int number, View::Action action, int x, int y)
    { fHandler.mouseButton(number, action, x, y); };
    switch (event.type)
    {
    case KeyPress:
    case KeyRelease:
        return fHandler.key(strokeOf(event.xkey));
    case ButtonPress:
        return button(static_cast<int>(event.xbutton.button), View::kPressed, event.xbutton.x, event.xbutton.y);
    case ButtonRelease:
        return button(static_cast<int>(event.xbutton.button), View::kReleased, event.xbutton.x, event.xbutton.y);
    // Window managers grab for a moment what is none of theirs; then nothing has left.
    case LeaveNotify:
        return event.xcrossing.mode == NotifyNormal ? fHandler.pointerLeft() : void();
    case FocusOut:
        return event.xfocus.mode == NotifyNormal ? fHandler.focusLost() : void();
    case MotionNotify:
        return button(0, View::kMoved, event.xmotion.x, event.xmotion.y);
    // Only the child selects it, and SimpleWindow::processEvent would throw the queue away.
    case Expose:
        return fHandler.display();
    case MappingNotify:
        XRefreshKeyboardMapping(&event.xmapping);
        return;
    case DestroyNotify:
        fOpen = false;
        return;
    case ClientMessage:
        fOpen = fOpen && static_cast<Atom>(event.xclient.data.l[0]) != fX->closing;
        return;
    default:
        if (!fClipboard->handle(event))
            SimpleWindow::processEvent(&event);
        return;
    }
}
