#pragma once
#include <krender/Export.h>

/// What a window tells its host. Every operation does nothing here; a host overrides those that it cares about. A
/// SimpleWindow calls resize() and display(); the others are for the host's own loop.
class KRENDER_EXPORT MessageHandler
{
public:
    virtual ~MessageHandler();

    /// Whether the picture is out of date. False here.
    [[nodiscard]] virtual bool needsRefresh() const;
    /// Draw the picture now.
    virtual void display();
    virtual void windowMoved();
    /// The window has a new size.
    /// @param width   pixels
    /// @param height  pixels
    virtual void resize(int width, int height);
    virtual void keyboard(unsigned key);
    /// What the numbers mean is between the host's loop and its handler.
    virtual void mouseButton(int, int, int, int);
};
