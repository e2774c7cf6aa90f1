#include <common/PassingName.h>

#include <array>
#include <utility>

namespace krTools
{

namespace
{

constexpr std::array kEnding{SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU, SIGXFSZ};

extern "C" void removeAndEnd(int signal)
{
    PassingName::removeAll();
    // Raised again, it ends the program as if it had never been caught.
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// What somebody ignores or catches already does not end the program, and stays as it is.
void catchSignals() noexcept
{
    struct sigaction action = {};
    action.sa_handler = removeAndEnd;
    sigemptyset(&action.sa_mask);
    for (const int signal : kEnding)
        sigaddset(&action.sa_mask, signal);
    for (const int signal : kEnding)
    {
        struct sigaction before = {};
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
            ::sigaction(signal, &action, nullptr);
    }
}

} // namespace

PassingName* PassingName::fsNewest = nullptr;

SignalsHeld::SignalsHeld() noexcept
{
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : kEnding)
        sigaddset(&held, signal);
    ::pthread_sigmask(SIG_BLOCK, &held, &fBefore);
}

SignalsHeld::~SignalsHeld() { ::pthread_sigmask(SIG_SETMASK, &fBefore, nullptr); }

PassingName::PassingName(std::string path, Remove remove) : fPath(std::move(path)), fRemove(remove), fOlder(fsNewest)
{
    catchSignals();
    fsNewest = this;
}

PassingName::~PassingName()
{
    const SignalsHeld held;
    PassingName** link = &fsNewest;
    while (*link != this)
        link = &(*link)->fOlder;
    *link = fOlder;
    if (!fKept)
        fRemove(fPath.c_str());
}

void PassingName::removeAll() noexcept
{
    for (const PassingName* name = fsNewest; name; name = name->fOlder)
        if (!name->fKept)
            name->fRemove(name->fPath.c_str());
}

} // namespace krTools
