#pragma once
#include <krender/window/SimpleWindow.h>

#include <memory>
#include <stdexcept>
#include <string>

/// A display or driver that cannot show anything.
class DisplayError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A window of the library with a child that OpenGL draws into, and the host's own event loop.
class GlWindow
{
public:
    /// Shows the window; its context is current from then on. A display is there. Throws a DisplayError.
    /// @param handler  borrowed; told of everything
    GlWindow(const std::string& title, unsigned width, unsigned height, MessageHandler& handler);
    GlWindow(const GlWindow&) = delete;
    GlWindow& operator=(const GlWindow&) = delete;
    ~GlWindow();

    void setTitle(const std::string& title);
    /// Shows what was drawn.
    void swapBuffers();
    /// Hands what is waiting to the handler, waiting for it if nothing is.
    /// @param milliseconds  how long to wait at most; negative for as long as it takes
    /// @return  false when the window has been closed
    [[nodiscard]] bool processEvents(int milliseconds);

private:
    struct X; ///< what X and GLX have of the window

    void process(void* event);

    MessageHandler& fHandler;
    SimpleWindow fWindow;
    std::unique_ptr<X> fX;
    bool fOpen = true;
};
