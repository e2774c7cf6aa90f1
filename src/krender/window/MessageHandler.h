#pragma once
#include <krender/Export.h>

/// What a window tells its host. Every operation does nothing here; a host overrides those that it needs. A SimpleWindow
/// calls resize() and display(); the host's own event loop calls the others.
class KRENDER_EXPORT MessageHandler
{
public:
    virtual ~MessageHandler();

    /// Whether the picture is out of date; false here.
    [[nodiscard]] virtual bool needsRefresh() const;
    /// Draw the picture now.
    virtual void display();
    /// The window stands elsewhere on its screen.
    virtual void windowMoved();
    /// The window has a new size.
    /// @param width   pixels
    /// @param height  pixels
    virtual void resize(int width, int height);
    /// A key was pressed.
    /// @param key  as the host's event loop numbers keys
    virtual void keyboard(unsigned key);
    /// A mouse button was pressed or released, or the mouse moved; the host's event loop defines the four numbers.
    virtual void mouseButton(int, int, int, int);
};
