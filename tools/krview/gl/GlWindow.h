#pragma once
#include "Clipboard.h"
#include "GraphicsApi.h"
#include "WindowHandler.h"

#include <krender/window/SimpleWindow.h>

#include <memory>
#include <optional>
#include <string>

/// What the pointer looks like.
enum class PointerShape
{
    Arrow,
    Text,
    Hand,
    Horizontal, ///< what is dragged to the left or right
};

/// A window of the library with a child that OpenGL draws into, and an event loop that also reports keys and the mouse.
class GlWindow
{
public:
    struct Size
    {
        unsigned width; ///< pixels
        unsigned height;
    };

    /// The size of the display. Throws a DisplayError if there is none that can be opened.
    [[nodiscard]] static Size displaySize();

    /// Shows the window and makes its context current. There must be a display. Throws a DisplayError.
    /// @param title    UTF-8
    /// @param api      what the context has
    /// @param handler  called for every event of the window; borrowed
    GlWindow(const std::string& title, const Size& size, GraphicsApi api, WindowHandler& handler);
    GlWindow(const GlWindow&) = delete;
    GlWindow& operator=(const GlWindow&) = delete;
    ~GlWindow();

    /// @param title  UTF-8
    void setTitle(const std::string& title);
    void setPointer(PointerShape shape);
    [[nodiscard]] Clipboard& clipboard() noexcept { return *fClipboard; }
    /// Shows what was drawn.
    void swapBuffers();
    /// Hands the waiting events to the handler. When there are none, waits for one.
    /// @param milliseconds  how long to wait at most; negative for as long as it takes
    /// @return  false when the window has been closed
    [[nodiscard]] bool processEvents(int milliseconds);

private:
    struct X; ///< the window's resources in X and GLX

    void createChild(const Size& size, GraphicsApi api);
    void selectShellEvents();
    void process(void* event);

    WindowHandler& fHandler;
    SimpleWindow fWindow;
    std::unique_ptr<X> fX;
    std::optional<Clipboard> fClipboard;
    bool fOpen = true;
};
