#include "GlxPbuffer.h"

#include <epoxy/glx.h>

GlxPbuffer::GlxPbuffer(GraphicsApi api, unsigned width, unsigned height) : fDisplay(XOpenDisplay(nullptr))
{
    if (!fDisplay)
        throw noDisplay();
    noteXErrors();
    GLXFBConfig config = chooseGlxConfig(fDisplay, GLX_PBUFFER_BIT);
    const int size[] = {GLX_PBUFFER_WIDTH, static_cast<int>(width), GLX_PBUFFER_HEIGHT, static_cast<int>(height), None};
    fPbuffer = glXCreatePbuffer(fDisplay, config, size);
    fContext = std::make_unique<GlxContext>(fDisplay, config, fPbuffer, api);
}

GlxPbuffer::~GlxPbuffer()
{
    fContext.reset();
    glXDestroyPbuffer(fDisplay, fPbuffer);
}
