#include "GlxContext.h"

#include <epoxy/gl.h>
#include <epoxy/glx.h>

#include <cstdlib>
#include <string>

namespace
{

/// The code of the last error that a server reported; 0 for none. Once the window is shown, errors come only from
/// requests for a window that another client has destroyed, and its DestroyNotify ends the loop.
int gLastError = 0;

int noteError(Display*, XErrorEvent* error)
{
    gLastError = error->error_code;
    return 0;
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

DisplayError noDisplay()
{
    const char* name = std::getenv("DISPLAY");
    return DisplayError(name && *name ? "cannot open the display \"" + std::string(name) + "\""
                                      : std::string("there is no display: DISPLAY is not set"));
}

void noteXErrors() { XSetErrorHandler(noteError); }

GLXFBConfig chooseGlxConfig(Display* display, int kind)
{
    int errorBase = 0;
    int eventBase = 0;
    if (!glXQueryExtension(display, &errorBase, &eventBase))
        throw DisplayError("the display has no OpenGL");
    // No samples: what is drawn comes from a frame that has them.
    const int wanted[] = {GLX_X_RENDERABLE,
                          True,
                          GLX_DOUBLEBUFFER,
                          True,
                          GLX_RENDER_TYPE,
                          GLX_RGBA_BIT,
                          GLX_DRAWABLE_TYPE,
                          kind,
                          GLX_RED_SIZE,
                          8,
                          GLX_GREEN_SIZE,
                          8,
                          GLX_BLUE_SIZE,
                          8,
                          GLX_DEPTH_SIZE,
                          16,
                          None};
    int count = 0;
    GLXFBConfig* configs = glXChooseFBConfig(display, DefaultScreen(display), wanted, &count);
    GLXFBConfig best = configs && count > 0 ? configs[0] : nullptr;
    if (configs)
        XFree(configs);
    if (!best)
        throw DisplayError("the display has no frame buffer of true colours with depths");
    return best;
}

GlxContext::GlxContext(Display* display, GLXFBConfig config, unsigned long drawable, GraphicsApi api)
    : fDisplay(display), fContext(createContext(display, config, api))
{
    XSync(display, False);
    if (!fContext || gLastError != 0 || !glXMakeContextCurrent(display, drawable, drawable, fContext))
    {
        release();
        throw DisplayError(std::string("the display") + whyNoContext(api));
    }
    try
    {
        prepare(api);
    }
    catch (const DisplayError&)
    {
        release();
        throw;
    }
}

GlxContext::~GlxContext() { release(); }

void GlxContext::release() noexcept
{
    glXMakeContextCurrent(fDisplay, None, None, nullptr);
    if (fContext)
        glXDestroyContext(fDisplay, fContext);
}
