#pragma once
#include "DisplayError.h"
#include "GlContext.h"

// X's own header is kept out of this one for its macros.
// NOLINTBEGIN(bugprone-reserved-identifier)
struct _XDisplay;
struct __GLXFBConfigRec;
struct __GLXcontextRec;
// NOLINTEND(bugprone-reserved-identifier)

/// That the display that DISPLAY names cannot be opened, or that it names none.
[[nodiscard]] DisplayError noDisplay();

/// Has the errors of X servers noted from now on, instead of ending the process.
void noteXErrors();

/// The best frame buffer of a display that krview can draw with. Throws a DisplayError.
/// @param kind  GLX_WINDOW_BIT or GLX_PBUFFER_BIT
[[nodiscard]] __GLXFBConfigRec* chooseGlxConfig(_XDisplay* display, int kind);

/// A context of a window or other drawable of X.
class GlxContext : public GlContext
{
public:
    /// Throws a DisplayError, also when an error was noted before.
    /// @param display   borrowed
    /// @param drawable  of the configuration; borrowed
    GlxContext(_XDisplay* display, __GLXFBConfigRec* config, unsigned long drawable, GraphicsApi api);
    ~GlxContext() override;

private:
    void release() noexcept;

    _XDisplay* fDisplay;
    __GLXcontextRec* fContext;
};
