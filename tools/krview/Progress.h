#pragma once
#include <stdexcept>
#include <string>

/// The user has closed the window in the midst of a long piece of work.
class Cancelled : public std::runtime_error
{
public:
    Cancelled() : std::runtime_error("cancelled") {}
};

/// Told how far a long piece of work is.
class Progress
{
public:
    virtual ~Progress() = default;

    /// To be called often; may be called from another thread than the window's. Throws Cancelled.
    /// @param what   such as "reading bunny.obj"
    /// @param share  of the work that is done, from 0 to 1; negative when it is not known
    virtual void report(const std::string& what, float share) = 0;
};

/// For work that nobody waits for in front of a window.
class NoProgress : public Progress
{
public:
    void report(const std::string& /*what*/, float /*share*/) override {}
};
