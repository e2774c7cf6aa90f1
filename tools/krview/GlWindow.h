#pragma once
#include "GraphicsApi.h"

#include <krender/window/SimpleWindow.h>

#include <memory>
#include <string>

/// A window of the library with a child that OpenGL draws into, and an event loop that also reports keys and the mouse.
class GlWindow
{
public:
    /// Shows the window and makes its context current. There must be a display. Throws a DisplayError.
    /// @param title           UTF-8
    /// @param width, height   pixels
    /// @param api             what the context has
    /// @param handler         called for every event of the window; borrowed
    GlWindow(const std::string& title, unsigned width, unsigned height, GraphicsApi api, MessageHandler& handler);
    GlWindow(const GlWindow&) = delete;
    GlWindow& operator=(const GlWindow&) = delete;
    ~GlWindow();

    /// @param title  UTF-8
    void setTitle(const std::string& title);
    /// Shows what was drawn.
    void swapBuffers();
    /// Hands the waiting events to the handler. When there are none, waits for one.
    /// @param milliseconds  how long to wait at most; negative for as long as it takes
    /// @return  false when the window has been closed
    [[nodiscard]] bool processEvents(int milliseconds);

private:
    struct X; ///< the window's resources in X and GLX

    void createChild(unsigned width, unsigned height, GraphicsApi api);
    void selectShellEvents();
    void process(void* event);

    MessageHandler& fHandler;
    SimpleWindow fWindow;
    std::unique_ptr<X> fX;
    bool fOpen = true;
};
