#pragma once
#include <csignal>
#include <string>

namespace krTools
{

/// Holds back the signals that end a program: what happens in its life happens whole.
class SignalsHeld
{
public:
    SignalsHeld() noexcept;
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld();

private:
    sigset_t fBefore;
};

/// A file or folder that goes away with this object, and when a signal ends the program, unless it is kept. Make both
/// while signals are held.
class PassingName
{
public:
    using Remove = int (*)(const char* path);

    /// @param remove  ::unlink or ::rmdir
    PassingName(std::string path, Remove remove);
    PassingName(const PassingName&) = delete;
    PassingName& operator=(const PassingName&) = delete;
    ~PassingName();

    [[nodiscard]] const std::string& path() const noexcept { return fPath; }
    /// Leaves it where it is.
    void keep() noexcept { fKept = true; }

    /// Removes all that are not kept, the newest first. Safe in a signal handler.
    static void removeAll() noexcept;

private:
    std::string fPath;
    Remove fRemove;
    bool fKept = false;
    PassingName* fOlder;
    static PassingName* fsNewest;
};

} // namespace krTools
