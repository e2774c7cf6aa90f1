#pragma once
#include <krender/window/MessageHandler.h>

#include <string>

/// A key that went down or up.
struct KeyStroke
{
    unsigned key = 0; ///< an X key symbol: the one that the key has without modifiers
    bool isDown = true;
    bool hasShift = false;
    bool hasControl = false;
    bool hasAlt = false;
    std::string text = {}; ///< what it types, in UTF-8; empty for nothing
};

/// What a GlWindow tells. Buttons and moves of the mouse go to mouseButton() as View says, also moves without a button.
class WindowHandler : public MessageHandler
{
public:
    virtual void key(const KeyStroke& stroke) = 0;
    /// The pointer has left the window, or the keyboard focus has.
    virtual void pointerLeft() = 0;
    virtual void focusLost() = 0;
};
