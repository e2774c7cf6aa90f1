#pragma once
#include <chrono>
#include <map>
#include <string>
#include <vector>

/// Tells when files change. It compares size, time and inode, so it also notices editors that replace files. A change
/// counts once the file has stayed as it is for a moment: editors empty a file before they write it, or remove it before
/// they put another in its place.
class FileWatch
{
public:
    /// When files are about to be read; what changes from then on is a change.
    using Moment = std::chrono::system_clock::time_point;
    [[nodiscard]] static Moment now() { return std::chrono::system_clock::now(); }
    /// Whether a file has changed, or may have, since the moment ahead of its reading: what was read may be old.
    [[nodiscard]] static bool hasChangedSince(const std::string& path, Moment before);

    /// Watches these files instead of the former ones. No change is lost: neither of those that were watched before, nor
    /// of those that were first read at some time after the given moment.
    void watch(const std::vector<std::string>& files, Moment before);
    using Clock = std::chrono::steady_clock;
    /// How long a file stays as it is before a change of it counts.
    static constexpr auto kRest = std::chrono::milliseconds(50);

    /// Whether a file has changed, appeared or disappeared since the last time that this was so, or since watch().
    [[nodiscard]] bool hasChanged(Clock::time_point now = Clock::now());

private:
    struct State
    {
        long long size = -1; ///< bytes; -1: there is no such file
        long long seconds = 0;
        long nanoseconds = 0;
        unsigned long node = 0;
        Moment changed; ///< its contents or its place
        friend bool operator==(const State&, const State&) = default;
    };

    /// A file, as it was when it counted and as it was seen last.
    struct File
    {
        State known;
        State seen;
        Clock::time_point since; ///< it is as it was seen last
    };

    [[nodiscard]] static State stateOf(const std::string& path);
    [[nodiscard]] static bool isSince(const State& state, Moment before);

    std::map<std::string, File> fFiles; ///< by path
};
