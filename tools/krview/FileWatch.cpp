#include "FileWatch.h"

#include <sys/stat.h>

FileWatch::State FileWatch::stateOf(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    return {status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_ino};
}

void FileWatch::watch(const std::vector<std::string>& files)
{
    fFiles.clear();
    for (const std::string& file : files)
        fFiles.push_back({file, stateOf(file)});
}

bool FileWatch::hasChanged()
{
    bool changed = false;
    for (File& file : fFiles)
    {
        const State state = stateOf(file.path);
        changed |= state != file.state;
        file.state = state;
    }
    return changed;
}
