#include "FileNames.h"

#include <filesystem>
#include <system_error>

std::string freeFileName(const std::string& ending)
{
    std::error_code failure;
    const std::filesystem::path folder = std::filesystem::current_path(failure);
    for (unsigned number = 1;; ++number)
    {
        const std::filesystem::path path = folder / ("krview-" + std::to_string(number) + ending);
        if (!std::filesystem::exists(path, failure))
            return path.string();
    }
}
