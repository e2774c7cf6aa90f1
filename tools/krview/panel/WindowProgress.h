#pragma once
#include <krview/Progress.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>

/// Shows in the window how far a load is that takes long. Reports from other threads than the one that made it show
/// nothing.
class WindowProgress : public Progress
{
public:
    /// Shows what is being done and the share of it; says whether the window is still open.
    using Show = std::function<bool(const std::string& what, float share)>;

    explicit WindowProgress(Show show) : fShow(std::move(show)) {}

    /// A load begins.
    void begin() { fNext = Clock::now() + kPatience; }
    void report(const std::string& what, float share) override;

private:
    using Clock = std::chrono::steady_clock;

    static constexpr auto kPatience = std::chrono::milliseconds(500);
    static constexpr auto kStep = std::chrono::milliseconds(50);

    Show fShow;
    std::thread::id fThread = std::this_thread::get_id();
    Clock::time_point fNext = Clock::time_point::max();
};
