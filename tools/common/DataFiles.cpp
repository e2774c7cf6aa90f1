#include <common/DataFiles.h>

#include <filesystem>

namespace krTools
{

std::string dataFile(const std::string& name)
{
    std::error_code failure;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failure);
    return (program.parent_path() / KRENDER_DATA_FROM_PROGRAM / name).lexically_normal().string();
}

} // namespace krTools
