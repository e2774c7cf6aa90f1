#pragma once
#include <krview/gl/GlWindow.h>

#include <chrono>
#include <functional>
#include <string>

/// The title of the window. It tells what is shown, now and then, and notes, which stay for a while.
class WindowTitle
{
public:
    /// @param window  borrowed
    explicit WindowTitle(GlWindow& window) : fWindow(window) {}

    /// To be called for every frame that is drawn.
    void countFrame() noexcept { ++fFrames; }
    /// Says what a function gives, if it is time for that.
    /// @param whatIsShown  takes the rate in frames a second; 0 when it is not known yet, or the picture rests
    void update(const std::function<std::string(double rate)>& whatIsShown);
    /// Whether it is to say something else as soon as it can.
    [[nodiscard]] bool isStale() const noexcept { return fIsStale || (fHasRate && !fIsNote); }
    /// Has the next update say what is shown at once, but for a note, which stays.
    void markStale() noexcept;

    /// Shows a note, and keeps it for a while.
    void showNote(const std::string& text);
    /// Shows a text until the next update.
    void showNow(const std::string& text);

private:
    using Clock = std::chrono::steady_clock;

    void restart(double seconds);

    GlWindow& fWindow;
    bool fIsStale = false;
    bool fIsNote = false;
    bool fHasRate = false; ///< which is not true for long
    bool fIsFirst = true;  ///< nothing has been said yet
    unsigned fFrames = 0;  ///< drawn since the last update
    double fSeconds = 0;   ///< from it to the next at least
    Clock::time_point fTime = Clock::now();
};
