#include "EglContext.h"

#include "DisplayError.h"

#include <epoxy/egl.h>

#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace
{

bool hasClientExtension(const char* name) { return epoxy_has_egl_extension(EGL_NO_DISPLAY, name); }

/// The displays to try, the likeliest first: those without a screen, the graphics cards, and the default.
std::vector<EGLDisplay> displays()
{
    std::vector<EGLDisplay> found;
    if (hasClientExtension("EGL_EXT_platform_base"))
    {
        if (hasClientExtension("EGL_MESA_platform_surfaceless"))
            found.push_back(eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr));
        std::array<EGLDeviceEXT, 16> devices{};
        EGLint count = 0;
        if (hasClientExtension("EGL_EXT_platform_device") && hasClientExtension("EGL_EXT_device_enumeration"))
            eglQueryDevicesEXT(static_cast<EGLint>(devices.size()), devices.data(), &count);
        for (EGLint i = 0; i < count; ++i)
            found.push_back(
                eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<std::size_t>(i)], nullptr));
    }
    found.push_back(eglGetDisplay(EGL_DEFAULT_DISPLAY));
    return found;
}

/// Null when there is none.
EGLConfig chooseConfig(EGLDisplay display)
{
    for (const EGLint surface : {EGL_PBUFFER_BIT, 0})
    {
        const std::array<EGLint, 13> wanted{EGL_SURFACE_TYPE, surface, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                            EGL_RED_SIZE,     8,       EGL_GREEN_SIZE,      8,
                                            EGL_BLUE_SIZE,    8,       EGL_DEPTH_SIZE,      16,
                                            EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (eglChooseConfig(display, wanted.data(), &config, 1, &count) != EGL_FALSE && count > 0)
            return config;
    }
    return nullptr;
}

} // namespace

EglContext::EglContext(GraphicsApi api, unsigned width, unsigned height)
{
    if (!epoxy_has_egl())
        throw DisplayError("EGL is not installed");
    bool isMade = false;
    for (void* display : displays())
    {
        isMade = make(display, api, width, height);
        if (isMade)
            break;
        release();
    }
    if (!isMade)
        throw DisplayError(std::string("EGL") + whyNoContext(api));
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

EglContext::~EglContext() { release(); }

bool EglContext::make(EGLDisplay display, GraphicsApi api, unsigned width, unsigned height)
{
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE)
        return false;
    fDisplay = display;
    EGLConfig config = chooseConfig(display);
    if (!config || eglBindAPI(EGL_OPENGL_API) == EGL_FALSE)
        return false;
    constexpr std::array<EGLint, 1> kCompatible{EGL_NONE};
    constexpr std::array<EGLint, 7> kCore{
        EGL_CONTEXT_MAJOR_VERSION,           3,       EGL_CONTEXT_MINOR_VERSION, 3, EGL_CONTEXT_OPENGL_PROFILE_MASK,
        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    const bool isCore = api == GraphicsApi::Gl33;
    fContext = eglCreateContext(display, config, EGL_NO_CONTEXT, isCore ? kCore.data() : kCompatible.data());
    // Drivers that have no surfaces but those of windows can do without one.
    const std::array<EGLint, 5> size{EGL_WIDTH, static_cast<EGLint>(width), EGL_HEIGHT, static_cast<EGLint>(height),
                                     EGL_NONE};
    fSurface = eglCreatePbufferSurface(display, config, size.data());
    return fContext && eglMakeCurrent(display, fSurface, fSurface, fContext) != EGL_FALSE;
}

void EglContext::release() noexcept
{
    if (!fDisplay)
        return;
    eglMakeCurrent(fDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (fSurface)
        eglDestroySurface(fDisplay, fSurface);
    if (fContext)
        eglDestroyContext(fDisplay, fContext);
    // The display stays until the program ends: without it the driver is unloaded, and loses what it holds for itself.
    fDisplay = fContext = fSurface = nullptr;
}
