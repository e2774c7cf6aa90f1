#pragma once
#include <chrono>
#include <map>
#include <string>
#include <vector>

/// Tells when files change. It compares size, time and inode, so it also notices editors that replace files.
class FileWatch
{
public:
    /// When files are about to be read; what changes from then on is a change.
    using Moment = std::chrono::system_clock::time_point;
    [[nodiscard]] static Moment now() { return std::chrono::system_clock::now(); }

    /// Watches these files instead of the former ones. No change is lost: neither of those that were watched before, nor
    /// of those that were first read at some time after the given moment.
    void watch(const std::vector<std::string>& files, Moment before);
    /// Whether a file has changed, appeared or disappeared since the last call or watch().
    [[nodiscard]] bool hasChanged();

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

    [[nodiscard]] static State stateOf(const std::string& path);

    std::map<std::string, State> fStates; ///< by path
};
