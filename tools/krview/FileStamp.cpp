#include "FileStamp.h"

#include <sys/stat.h>

std::string fileStamp(const std::string& path)
{
    struct stat status = {};
    (void)::stat(path.c_str(), &status);
    return path + '\n' + std::to_string(status.st_ino) + ' ' + std::to_string(status.st_size) + ' ' +
           std::to_string(status.st_mtim.tv_sec) + ' ' + std::to_string(status.st_mtim.tv_nsec);
}
