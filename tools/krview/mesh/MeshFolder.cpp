#include "MeshFolder.h"

#include "ReaderLimits.h"

#include <common/Source.h>

#include <assimp/MemoryIOWrapper.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace
{

/// A file's bytes in memory.
class FileStream : public Assimp::MemoryIOStream
{
public:
    explicit FileStream(std::unique_ptr<const std::string> bytes)
        : MemoryIOStream(reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()), fBytes(std::move(bytes))
    {
    }

private:
    std::unique_ptr<const std::string> fBytes;
};

} // namespace

MeshFolder::MeshFolder(const std::string& mesh, const MeshWireOutput& output) : fMesh(mesh), fOutput(output)
{
    const std::filesystem::path folder = fMesh.parent_path();
    fFolder = std::filesystem::canonical(folder.empty() ? "." : folder);
}

bool MeshFolder::Exists(const char* path) const
{
    std::error_code failure;
    if (fMesh != path)
    {
        const std::filesystem::path real = std::filesystem::weakly_canonical(path, failure);
        if (failure || std::mismatch(fFolder.begin(), fFolder.end(), real.begin(), real.end()).first != fFolder.end())
            return false;
        if (fTold.insert(path).second)
            fOutput.sendFile(path);
    }
    return std::filesystem::is_regular_file(path, failure);
}

Assimp::IOStream* MeshFolder::Open(const char* path, const char* mode)
{
    if (std::string_view(mode).find_first_of("wa+") != std::string_view::npos || !Exists(path))
        return nullptr;
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    if (failure || size > kMostMeshFileBytes)
        return nullptr;
    allowReading(size);
    try
    {
        return new FileStream(std::make_unique<const std::string>(krTools::readText(path, kMostMeshFileBytes)));
    }
    catch (const krTools::FileError&)
    {
        return nullptr;
    }
}

void MeshFolder::Close(Assimp::IOStream* stream) { delete stream; }
