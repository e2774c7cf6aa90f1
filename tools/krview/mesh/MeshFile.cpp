#include "MeshFile.h"

#include "MeshBuilder.h"
#include "MeshError.h"
#include "MeshReaderProcess.h"
#include "MeshWire.h"
#include "PartArrays.h"
#include "PartCheck.h"
#include "PartCompletion.h"
#include "ReaderLimits.h"

#include <common/PrintedMessage.h>
#include <common/Source.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

namespace
{

#ifdef KRVIEW_HAS_ASSIMP
constexpr bool kReadsMeshFiles = true;
#else
constexpr bool kReadsMeshFiles = false;
#endif

constexpr std::size_t kMostParts = 4096;
/// The most time for a reader that waits; one that works is ended by its processor time.
constexpr std::chrono::seconds kMostTime{180};
constexpr float kReadingShare = 0.6f; ///< of the work

void checkFile(const std::string& path)
{
    std::error_code failure;
    const std::filesystem::file_status status = std::filesystem::status(path, failure);
    if (!std::filesystem::exists(status))
        throw MeshError(failure ? failure.message() : "there is no such file");
    if (!std::filesystem::is_regular_file(status))
        throw MeshError("it is no file with contents of its own");
    if (std::filesystem::file_size(path, failure) > kMostMeshFileBytes)
        throw MeshError("it has more than " + std::to_string(kMostMeshFileBytes >> 20) + " MB");
}

std::vector<PartArrays> readPieces(const std::string& path, Progress& progress, std::vector<std::string>& files)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + kMostTime;
    const std::string what = "reading " + std::filesystem::path(path).filename().string();
    MeshReaderProcess reader(path);
    MeshWireInput input(reader.output(),
                        [&]
                        {
                            if (Clock::now() > end)
                                throw MeshError("its reader does not come to an end");
                            progress.report(what, input.share() < 0 ? input.share() : kReadingShare * input.share());
                        });
    while (input.readRecord())
        ;
    files.insert(files.end(), input.files().begin(), input.files().end());
    if (!input.failure().empty())
        throw MeshError(krTools::printable(input.failure()));
    if (!input.isWhole())
        throw MeshError(reader.waitForEnd());
    return std::move(input.pieces());
}

/// Appends the vertices and triangles of a piece with the same streams.
void append(PartArrays& part, const PartArrays& piece)
{
    const auto base = static_cast<unsigned>(part.vertexCount());
    for (std::size_t slot = 0; slot < kStreamSlots; ++slot)
        part.values[slot].insert(part.values[slot].end(), piece.values[slot].begin(), piece.values[slot].end());
    for (const unsigned vertex : piece.triangles)
        part.triangles.push_back(base + vertex);
    for (const unsigned vertex : piece.edges)
        part.edges.push_back(base + vertex);
}

/// Gives a part a name that no other has.
void nameUniquely(PartArrays& part, std::set<std::string>& names)
{
    const std::string wanted = part.name;
    for (unsigned number = 2; !names.insert(part.name).second; ++number)
        part.name = wanted + '.' + std::to_string(number);
}

/// Joins the pieces that make a part.
std::vector<PartArrays> joinPieces(std::vector<PartArrays> pieces)
{
    using Streams = std::array<bool, kStreamSlots>;
    std::map<std::tuple<std::string, bool, Streams>, std::size_t> numbers;
    std::vector<PartArrays> parts;
    for (PartArrays& piece : pieces)
    {
        piece.name = piece.name.empty() ? "part" : krTools::printable(piece.name);
        checkPart(piece);
        if (piece.triangles.empty())
            continue;
        Streams streams{};
        for (std::size_t slot = 0; slot < kStreamSlots; ++slot)
            streams[slot] = !piece.values[slot].empty();
        const auto [known, isNew] = numbers.try_emplace({piece.name, piece.isTransparent, streams}, parts.size());
        if (isNew)
            parts.push_back(std::move(piece));
        else
            append(parts[known->second], std::exchange(piece, {}));
    }
    return parts;
}

std::unique_ptr<Mesh> readParts(const std::string& path, Progress& progress, std::vector<std::string>& files)
{
    checkFile(path);
    std::vector<PartArrays> parts = joinPieces(readPieces(path, progress, files));
    if (parts.size() > kMostParts)
        throw MeshError("it has " + std::to_string(parts.size()) + " parts, more than " + std::to_string(kMostParts));
    std::set<std::string> names;
    float share = kReadingShare;
    for (PartArrays& part : parts)
    {
        nameUniquely(part, names);
        const float ownShare = (1 - kReadingShare) / static_cast<float>(parts.size());
        const auto report = [&](float done) { progress.report("preparing " + part.name, share + done * ownShare); };
        report(0);
        completePart(part, report);
        share += ownShare;
    }
    std::erase_if(parts, [](const PartArrays& part) { return part.triangles.empty(); });
    if (parts.empty())
        throw MeshError("it has no triangles");
    return buildMesh(parts);
}

} // namespace

std::unique_ptr<Mesh> readMesh(const std::string& path, Progress& progress, std::vector<std::string>& files)
{
    if (!kReadsMeshFiles)
        throw krTools::FileError("cannot read '" + path +
                                 "': this krview was built without Assimp, which reads meshes");
    try
    {
        return readParts(path, progress, files);
    }
    catch (const MeshError& error)
    {
        throw krTools::FileError("cannot read '" + path + "': " + error.what());
    }
    catch (const std::system_error& error)
    {
        throw krTools::FileError("cannot read '" + path + "': " + error.what());
    }
}
