#pragma once
#include <string>

// The X library's own names; its headers and macros stay away from users.
struct _XDisplay; // NOLINT(bugprone-reserved-identifier)
union _XEvent;    // NOLINT(bugprone-reserved-identifier)

/// The text that was copied last, in whichever program: the selection CLIPBOARD of the display.
class Clipboard
{
public:
    /// @param window  the X window that owns what is copied here
    Clipboard(_XDisplay* display, unsigned long window);

    /// Copies a text.
    /// @param text  UTF-8
    void copy(const std::string& text);
    /// The text that was copied last; empty when there is none, when it has more than a megabyte, and when the program that
    /// has it does not answer within half a second.
    [[nodiscard]] std::string paste();
    /// Answers an event that is about a selection.
    /// @return  whether it was one
    bool handle(const _XEvent& event);

private:
    [[nodiscard]] unsigned long atom(const char* name) const;

    _XDisplay* fDisplay;
    unsigned long fWindow;
    std::string fText; ///< what was copied here
    bool fIsOwner = false;
};
