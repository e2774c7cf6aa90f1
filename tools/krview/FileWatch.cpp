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

bool FileWatch::isSince(const State& state, Moment before)
{
    // The clock of file systems goes in steps, and lags behind by one.
    return state.changed >= before - std::chrono::milliseconds(10);
}

bool FileWatch::hasChangedSince(const std::string& path, Moment before) { return isSince(stateOf(path), before); }

void FileWatch::watch(const std::vector<std::string>& files, Moment before)
{
    std::map<std::string, File> watched;
    for (const std::string& path : files)
    {
        // A file that changed while it was read again has changed since the last call.
        if (const auto known = fFiles.find(path); known != fFiles.end())
        {
            watched.insert(*known);
            continue;
        }
        // A new one may have appeared after it was looked for: then it counts as not there yet.
        const State state = stateOf(path);
        const State known = isSince(state, before) ? State() : state;
        watched.emplace(path, File{known, known, {}});
    }
    fFiles = std::move(watched);
}

bool FileWatch::hasChanged(Clock::time_point now)
{
    bool changed = false;
    for (auto& [path, file] : fFiles)
    {
        const State state = stateOf(path);
        if (state != file.seen)
        {
            file.seen = state;
            file.since = now;
        }
        if (file.seen != file.known && now - file.since >= kRest)
        {
            file.known = file.seen;
            changed = true;
        }
    }
    return changed;
}
