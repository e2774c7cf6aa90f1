#include "FileWatch.h"

#include <sys/stat.h>

#include <utility>

FileWatch::State FileWatch::stateOf(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    const auto changed = std::chrono::seconds(status.st_ctim.tv_sec) + std::chrono::nanoseconds(status.st_ctim.tv_nsec);
    return {status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_ino,
            Moment(std::chrono::duration_cast<Moment::duration>(changed))};
}

void FileWatch::watch(const std::vector<std::string>& files, Moment before)
{
    // The clock of file systems goes in steps, and lags behind by one.
    before -= std::chrono::milliseconds(10);
    std::map<std::string, State> states;
    for (const std::string& file : files)
    {
        // A file that changed while it was read again has changed since the last call.
        const auto known = fStates.find(file);
        State state = known == fStates.end() ? stateOf(file) : known->second;
        // A new one may have appeared after it was looked for: then it counts as not there yet.
        if (known == fStates.end() && state.changed >= before)
            state = {};
        states.emplace(file, state);
    }
    fStates = std::move(states);
}

bool FileWatch::hasChanged()
{
    bool changed = false;
    for (auto& [path, known] : fStates)
    {
        const State state = stateOf(path);
        changed |= state != known;
        known = state;
    }
    return changed;
}
