#pragma once
#include <string>
#include <vector>

/// Tells when files change. It looks at them, so that it notices files that editors replace too.
class FileWatch
{
public:
    /// Watches these files from now on.
    void watch(const std::vector<std::string>& files);
    /// Whether a file has changed, come or gone since it was last asked.
    [[nodiscard]] bool hasChanged();

private:
    struct State
    {
        long long size = -1; ///< -1: there is none
        long long seconds = 0;
        long nanoseconds = 0;
        unsigned long node = 0;
        friend bool operator==(const State&, const State&) = default;
    };
    struct File
    {
        std::string path;
        State state;
    };

    [[nodiscard]] static State stateOf(const std::string& path);

    std::vector<File> fFiles;
};
