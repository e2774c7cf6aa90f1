#include "OffscreenContext.h"

#include "DisplayError.h"
#include "GlxPbuffer.h"

#ifdef KRVIEW_HAS_EGL
#include "EglContext.h"
#endif

#include <string>

namespace
{

std::unique_ptr<GlContext> makeWithoutDisplay(GraphicsApi api, unsigned width, unsigned height)
{
#ifdef KRVIEW_HAS_EGL
    return std::make_unique<EglContext>(api, width, height);
#else
    (void)api, (void)width, (void)height;
    throw DisplayError("this krview was built without EGL");
#endif
}

} // namespace

std::unique_ptr<GlContext> makeOffscreenContext(GraphicsApi api, unsigned width, unsigned height)
{
    std::string reason;
    try
    {
        return std::make_unique<GlxPbuffer>(api, width, height);
    }
    catch (const DisplayError& error)
    {
        reason = error.what();
    }
    try
    {
        return makeWithoutDisplay(api, width, height);
    }
    catch (const DisplayError& error)
    {
        throw DisplayError(reason + ", and " + error.what());
    }
}
