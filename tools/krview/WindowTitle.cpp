#include "WindowTitle.h"

namespace
{

constexpr double kTitleSeconds = 0.5; ///< between two updates
constexpr double kNoteSeconds = 4;    ///< the least time that a note stays

} // namespace

void WindowTitle::update(const std::function<std::string(double rate)>& whatIsShown)
{
    const double passed = std::chrono::duration<double>(Clock::now() - fTime).count();
    if (passed < fSeconds && !fIsFirst)
        return;
    const double rate = fIsFirst ? 0 : fFrames / passed;
    showNow(whatIsShown(rate));
    restart(kTitleSeconds);
    fHasRate = rate > 0;
    fIsFirst = fIsStale = fIsNote = false;
}

void WindowTitle::markStale() noexcept
{
    fIsStale = true;
    if (!fIsNote)
        fSeconds = 0;
}

void WindowTitle::showNote(const std::string& text)
{
    showNow(text);
    restart(kNoteSeconds);
    fIsNote = true;
}

void WindowTitle::showNow(const std::string& text) { fWindow.setTitle("krview: " + text); }

void WindowTitle::restart(double seconds)
{
    fTime = Clock::now();
    fFrames = 0;
    fSeconds = seconds;
}
