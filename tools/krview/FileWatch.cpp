#include "FileWatch.h"

#include <sys/stat.h>

#include <utility>

FileWatch::State FileWatch::stateOf(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    return {status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_ino};
}

void FileWatch::watch(const std::vector<std::string>& files)
{
    std::map<std::string, State> states;
    for (const std::string& file : files)
    {
        // A file that changed while it was read again has changed since the last call.
        const auto known = fStates.find(file);
        states.emplace(file, known == fStates.end() ? stateOf(file) : known->second);
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
