#include "GlWindow.h"

#include "View.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <epoxy/gl.h>
#include <epoxy/glx.h>
#include <poll.h>

namespace
{

/// The code of the last error that the server reported. Errors reach the program when it is about something else, and
/// what can still fail once the window is up is what goes with a window that somebody has destroyed: it ends the loop.
int lastError = 0;

int noteError(Display*, XErrorEvent* error)
{
    lastError = error->error_code;
    return 0;
}

/// The best of the frame buffers that will do, or null. Several samples a pixel are welcome.
GLXFBConfig chooseConfig(Display* display)
{
    for (const int samples : {4, 0})
    {
        const int wanted[] = {GLX_X_RENDERABLE,
                              True,
                              GLX_DOUBLEBUFFER,
                              True,
                              GLX_RENDER_TYPE,
                              GLX_RGBA_BIT,
                              GLX_DRAWABLE_TYPE,
                              GLX_WINDOW_BIT,
                              GLX_RED_SIZE,
                              8,
                              GLX_GREEN_SIZE,
                              8,
                              GLX_BLUE_SIZE,
                              8,
                              GLX_DEPTH_SIZE,
                              16,
                              GLX_SAMPLES,
                              samples,
                              None};
        int count = 0;
        if (GLXFBConfig* configs = glXChooseFBConfig(display, DefaultScreen(display), wanted, &count))
        {
            GLXFBConfig best = count > 0 ? configs[0] : nullptr;
            XFree(configs);
            if (best)
                return best;
        }
    }
    return nullptr;
}

} // namespace

struct GlWindow::X
{
    Display* display = nullptr;
    Window shell = 0;
    Window child = 0;
    Colormap colours = 0;
    GLXContext context = nullptr;
    Atom closing = 0;
};

GlWindow::GlWindow(const std::string& title, unsigned width, unsigned height, MessageHandler& handler)
    : fHandler(handler), fX(std::make_unique<X>())
{
    XSetErrorHandler(noteError);
    if (fWindow.create(title.c_str(), width, height, &handler, nullptr) != 0)
        throw DisplayError("cannot make a window");
    X& x = *fX;
    x.display = fWindow.windowWrapper()->display;
    x.shell = fWindow.windowWrapper()->window;

    int errorBase = 0;
    int eventBase = 0;
    if (!glXQueryExtension(x.display, &errorBase, &eventBase))
        throw DisplayError("the display has no OpenGL");
    GLXFBConfig config = chooseConfig(x.display);
    XVisualInfo* visual = config ? glXGetVisualFromFBConfig(x.display, config) : nullptr;
    if (!visual)
        throw DisplayError("the display has no frame buffer of true colours with depths");
    XSetWindowAttributes attributes = {};
    attributes.colormap = x.colours = XCreateColormap(x.display, x.shell, visual->visual, AllocNone);
    attributes.event_mask = ExposureMask | KeyPressMask | ButtonPressMask | ButtonReleaseMask | ButtonMotionMask;
    x.child = XCreateWindow(x.display, x.shell, 0, 0, width, height, 0, visual->depth, InputOutput, visual->visual,
                            CWColormap | CWBorderPixel | CWEventMask, &attributes);
    XFree(visual);
    x.context = glXCreateNewContext(x.display, config, GLX_RGBA_TYPE, nullptr, True);
    XMapWindow(x.display, x.child);
    XSync(x.display, False);
    if (!x.context || lastError != 0 || !glXMakeCurrent(x.display, x.child, x.context))
        throw DisplayError("cannot make an OpenGL context");
    if (epoxy_gl_version() < 21)
        throw DisplayError("OpenGL 2.1 is wanted, and the driver has " +
                           std::string(reinterpret_cast<const char*>(glGetString(GL_VERSION))));

    // With a window manager the keys go to the shell when the pointer is elsewhere, and closing is a message to it.
    XWindowAttributes shell = {};
    XGetWindowAttributes(x.display, x.shell, &shell);
    XSelectInput(x.display, x.shell, shell.your_event_mask | KeyPressMask);
    x.closing = XInternAtom(x.display, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(x.display, x.shell, &x.closing, 1);

    fWindow.windowWrapper()->setFBWindow(x.child);
    handler.resize(static_cast<int>(width), static_cast<int>(height));
    fWindow.show();
}

GlWindow::~GlWindow()
{
    X& x = *fX;
    glXMakeCurrent(x.display, None, nullptr);
    if (x.context)
        glXDestroyContext(x.display, x.context);
    SimpleWindow::fWindowsMap.erase(x.shell);
    XDestroyWindow(x.display, x.child);
    XFreeColormap(x.display, x.colours);
}

void GlWindow::setTitle(const std::string& title) { XStoreName(fX->display, fX->shell, title.c_str()); }

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
        return fHandler.keyboard(static_cast<unsigned>(XLookupKeysym(&event.xkey, 0)));
    case ButtonPress:
        return button(static_cast<int>(event.xbutton.button), View::kPressed, event.xbutton.x, event.xbutton.y);
    case ButtonRelease:
        return button(static_cast<int>(event.xbutton.button), View::kReleased, event.xbutton.x, event.xbutton.y);
    case MotionNotify:
        return button(0, View::kMoved, event.xmotion.x, event.xmotion.y);
    // The shell does not select it, and the child's are the host's to answer.
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
        SimpleWindow::processEvent(&event);
        return;
    }
}
