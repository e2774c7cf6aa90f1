#include "WindowProgress.h"

void WindowProgress::report(const std::string& what, float share)
{
    if (Clock::now() < fNext || std::this_thread::get_id() != fThread)
        return;
    if (!fShow(what, share))
        throw Cancelled();
    fNext = Clock::now() + kStep;
}
