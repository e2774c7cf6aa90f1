#include "GlWindow.h"

#include "DisplayError.h"
#include "View.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <epoxy/gl.h>
#include <epoxy/glx.h>
#include <poll.h>

namespace
{

/// The code of the last error that the server reported; 0 for none. Once the window is shown, errors come only from
/// requests for a window that another client has destroyed, and its DestroyNotify ends the loop.
int gLastError = 0;

int noteError(Display*, XErrorEvent* error)
{
    gLastError = error->error_code;
    return 0;
}

/// The best frame buffer with what is needed, if possible with several samples a pixel; null when there is none.
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

/// Null when there is none; then an error of the display may be on its way.
GLXContext createContext(Display* display, GLXFBConfig config, GraphicsApi api)
{
    if (api == GraphicsApi::Gl21)
        return glXCreateNewContext(display, config, GLX_RGBA_TYPE, nullptr, True);
    if (!epoxy_has_glx_extension(display, DefaultScreen(display), "GLX_ARB_create_context_profile"))
        return nullptr;
    const int wanted[] = {
        GLX_CONTEXT_MAJOR_VERSION_ARB,    3,   GLX_CONTEXT_MINOR_VERSION_ARB, 3, GLX_CONTEXT_PROFILE_MASK_ARB,
        GLX_CONTEXT_CORE_PROFILE_BIT_ARB, None};
    return glXCreateContextAttribsARB(display, config, nullptr, True, wanted);
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
    Atom title = 0;
    Atom utf8 = 0;
};

GlWindow::GlWindow(const std::string& title, unsigned width, unsigned height, GraphicsApi api, MessageHandler& handler)
    : fHandler(handler), fX(std::make_unique<X>())
{
    XSetErrorHandler(noteError);
    if (fWindow.create(title.c_str(), width, height, &handler, nullptr) != 0)
        throw DisplayError("cannot make a window");
    X& x = *fX;
    x.display = fWindow.windowWrapper()->display;
    x.shell = fWindow.windowWrapper()->window;
    x.closing = XInternAtom(x.display, "WM_DELETE_WINDOW", False);
    x.title = XInternAtom(x.display, "_NET_WM_NAME", False);
    x.utf8 = XInternAtom(x.display, "UTF8_STRING", False);
    createChild(width, height, api);
    selectShellEvents();
    setTitle(title);

    fWindow.windowWrapper()->setFBWindow(x.child);
    handler.resize(static_cast<int>(width), static_cast<int>(height));
    fWindow.show();
}

void GlWindow::createChild(unsigned width, unsigned height, GraphicsApi api)
{
    X& x = *fX;
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
    attributes.event_mask = ExposureMask | ButtonPressMask | ButtonReleaseMask | ButtonMotionMask;
    x.child = XCreateWindow(x.display, x.shell, 0, 0, width, height, 0, visual->depth, InputOutput, visual->visual,
                            CWColormap | CWBorderPixel | CWEventMask, &attributes);
    XFree(visual);
    x.context = createContext(x.display, config, api);
    XMapWindow(x.display, x.child);
    XSync(x.display, False);
    if (!x.context || gLastError != 0 || !glXMakeCurrent(x.display, x.child, x.context))
        throw DisplayError(api == GraphicsApi::Gl33 ? "the display has no core profile of OpenGL 3.3"
                                                    : "cannot make an OpenGL context");
    if (epoxy_gl_version() < 21)
        throw DisplayError("OpenGL 2.1 is wanted, and the driver has " +
                           std::string(reinterpret_cast<const char*>(glGetString(GL_VERSION))));
    if (api != GraphicsApi::Gl33)
        return;
    // Core profiles draw nothing without a vertex array object; one is enough, and goes with the context.
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
}

/// Has the keys sent to the shell, and a message when the user closes the window.
void GlWindow::selectShellEvents()
{
    X& x = *fX;
    // A window manager gives the keyboard focus to the shell if it asks for it. Key events come to the shell even while
    // the pointer is in the child, which does not select them.
    XWindowAttributes shell = {};
    XGetWindowAttributes(x.display, x.shell, &shell);
    XSelectInput(x.display, x.shell, shell.your_event_mask | KeyPressMask);
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
    glXMakeCurrent(x.display, None, nullptr);
    if (x.context)
        glXDestroyContext(x.display, x.context);
    SimpleWindow::fWindowsMap.erase(x.shell);
    XDestroyWindow(x.display, x.child);
    XFreeColormap(x.display, x.colours);
}

void GlWindow::setTitle(const std::string& title)
{
    XStoreName(fX->display, fX->shell, title.c_str());
    XChangeProperty(fX->display, fX->shell, fX->title, fX->utf8, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(title.data()), static_cast<int>(title.size()));
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
        return fHandler.keyboard(static_cast<unsigned>(XLookupKeysym(&event.xkey, 0)));
    case ButtonPress:
        return button(static_cast<int>(event.xbutton.button), View::kPressed, event.xbutton.x, event.xbutton.y);
    case ButtonRelease:
        return button(static_cast<int>(event.xbutton.button), View::kReleased, event.xbutton.x, event.xbutton.y);
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
        SimpleWindow::processEvent(&event);
        return;
    }
}
