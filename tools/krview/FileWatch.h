#pragma once
#include <map>
#include <string>
#include <vector>

/// Tells when files change. It compares size, time and inode, so it also notices editors that replace files.
class FileWatch
{
public:
    /// Watches these files instead of the former ones; changes of those that are among both are not lost.
    void watch(const std::vector<std::string>& files);
    /// Whether a file has changed, appeared or disappeared since the last call or watch().
    [[nodiscard]] bool hasChanged();

private:
    struct State
    {
        long long size = -1; ///< bytes; -1: there is no such file
        long long seconds = 0;
        long nanoseconds = 0;
        unsigned long node = 0;
        friend bool operator==(const State&, const State&) = default;
    };

    [[nodiscard]] static State stateOf(const std::string& path);

    std::map<std::string, State> fStates; ///< by path
};
