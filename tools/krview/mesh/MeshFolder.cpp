#include "MeshFolder.h"

#include "ReaderLimits.h"

#include <common/Source.h>

#include <assimp/MemoryIOWrapper.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <utility>

namespace
{

/// A file's bytes in memory.
class FileStream : public Assimp::MemoryIOStream
{
public:
    explicit FileStream(std::shared_ptr<const std::string> bytes)
        : MemoryIOStream(reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()), fBytes(std::move(bytes))
    {
    }

private:
    std::shared_ptr<const std::string> fBytes;
};

/// The name that a URI stands for, whose bytes may be written as '%' and two digits.
std::string nameOfUri(std::string_view uri)
{
    std::string name;
    while (!uri.empty())
    {
        const std::string_view digits = uri.substr(1, 2);
        unsigned byte = 0;
        const bool isCoded = uri[0] == '%' && digits.size() == 2 &&
                             std::from_chars(digits.data(), digits.data() + 2, byte, 16).ptr == digits.data() + 2 &&
                             byte != 0;
        name += isCoded ? static_cast<char>(byte) : uri[0];
        uri.remove_prefix(isCoded ? 3 : 1);
    }
    return name;
}

} // namespace

MeshFolder::MeshFolder(const std::string& mesh, const MeshWireOutput& output) : fMesh(mesh), fOutput(output)
{
    const std::filesystem::path folder = fMesh.parent_path();
    fFolder = std::filesystem::canonical(folder.empty() ? "." : folder);
}

std::filesystem::path MeshFolder::find(const std::string& name) const
{
    std::error_code failure;
    std::filesystem::path real = std::filesystem::weakly_canonical(name, failure);
    if (fMesh != name)
    {
        if (failure || std::mismatch(fFolder.begin(), fFolder.end(), real.begin(), real.end()).first != fFolder.end())
            return {};
        if (fTold.insert(name).second)
            fOutput.sendFile(name);
    }
    return std::filesystem::is_regular_file(real, failure) ? real : std::filesystem::path();
}

std::filesystem::path MeshFolder::findByNameOrUri(const std::string& name) const
{
    std::filesystem::path found = find(name);
    if (const std::string decoded = nameOfUri(name); found.empty() && decoded != name)
        found = find(decoded);
    return found;
}

bool MeshFolder::Exists(const char* path) const { return !findByNameOrUri(path).empty(); }

Assimp::IOStream* MeshFolder::Open(const char* path, const char* mode)
{
    const std::filesystem::path found = findByNameOrUri(path);
    if (std::string_view(mode).find_first_of("wa+") != std::string_view::npos || found.empty())
        return nullptr;
    std::shared_ptr<const std::string>& bytes = fRead[found];
    if (!bytes)
    {
        std::error_code failure;
        const std::uintmax_t size = std::filesystem::file_size(found, failure);
        if (failure || size > kMostMeshFileBytes)
            return nullptr;
        allowReading(size);
        try
        {
            bytes = std::make_shared<const std::string>(krTools::readText(found, kMostMeshFileBytes));
        }
        catch (const krTools::FileError&)
        {
            return nullptr;
        }
    }
    return new FileStream(bytes);
}

void MeshFolder::Close(Assimp::IOStream* stream) { delete stream; }
