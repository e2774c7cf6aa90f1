#include "MeshWire.h"

#include "MeshError.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <system_error>

namespace
{

/// A kind of record. Streams come behind the others, as kStream and their slot.
enum Kind : std::uint32_t
{
    kShare,
    kFile,
    kFailure,
    kEnd,
    kPiece,            // the name
    kTransparentPiece, // the name
    kTriangles,
    kEdges,
    kStream,
};

constexpr std::size_t kMostBytes = std::size_t{1} << 30;
constexpr std::size_t kMostTriangles = 20'000'000;
constexpr std::size_t kMostText = 4096;
constexpr std::size_t kMostFiles = 4096;
constexpr std::size_t kMostPieces = 1 << 20;
constexpr std::size_t kStep = std::size_t{1} << 20; // memory grows with what has come, not with what is announced
constexpr int kWaitMilliseconds = 50;

/// Thrown when nothing more comes.
struct CutOff
{
};

[[noreturn]] void failBroken() { throw MeshError("its reader gave a broken answer"); }

} // namespace

void MeshWireOutput::send(std::uint32_t kind, const void* values, std::size_t count, std::size_t valueSize) const
{
    const std::array header{kind, static_cast<std::uint32_t>(count)};
    const auto write = [this](const void* bytes, std::size_t size)
    {
        const char* at = static_cast<const char*>(bytes);
        while (size != 0)
        {
            const ssize_t written = ::write(fDescriptor, at, size);
            if (written < 0 && errno != EINTR)
                throw std::system_error(errno, std::generic_category());
            at += std::max<ssize_t>(written, 0);
            size -= static_cast<std::size_t>(std::max<ssize_t>(written, 0));
        }
    };
    write(header.data(), sizeof header);
    write(values, count * valueSize);
}

void MeshWireOutput::sendShare(float share) const { send(kShare, &share, 1, sizeof share); }

void MeshWireOutput::sendFile(std::string_view path) const
{
    if (path.size() <= kMostText)
        send(kFile, path.data(), path.size(), 1);
}

void MeshWireOutput::sendFailure(std::string_view text) const
{
    send(kFailure, text.data(), std::min(text.size(), kMostText), 1);
}

void MeshWireOutput::sendPiece(const PartArrays& piece) const
{
    send(piece.isTransparent ? kTransparentPiece : kPiece, piece.name.data(), std::min(piece.name.size(), kMostText),
         1);
    const auto sendWords = [this](std::uint32_t kind, const auto& words)
    {
        if (!words.empty())
            send(kind, words.data(), words.size(), sizeof words[0]);
    };
    for (std::uint32_t slot = 0; slot < kStreamSlots; ++slot)
        sendWords(kStream + slot, piece.values[slot]);
    sendWords(kTriangles, piece.triangles);
    sendWords(kEdges, piece.edges);
}

void MeshWireOutput::sendEnd() const { send(kEnd, nullptr, 0, 1); }

bool MeshWireInput::readRecord()
{
    try
    {
        std::array<std::uint32_t, 2> header{};
        readBytes(header.data(), sizeof header);
        readRecord(header[0], header[1]);
        return !fIsWhole && fFailure.empty();
    }
    catch (const CutOff&)
    {
        return false;
    }
}

void MeshWireInput::readRecord(std::uint32_t kind, std::size_t count)
{
    switch (kind)
    {
    case kShare:
    {
        std::vector<float> share;
        readValues(share, count);
        if (share.size() != 1 || !std::isfinite(share[0]))
            failBroken();
        fShare = std::clamp(share[0], 0.0f, 1.0f);
        break;
    }
    case kFile:
        fFiles.push_back(readText(count));
        if (fFiles.size() > kMostFiles)
            throw MeshError("it consists of more than " + std::to_string(kMostFiles) + " files");
        break;
    case kFailure:
        fFailure = readText(count);
        break;
    case kEnd:
        fIsWhole = true;
        break;
    case kPiece:
    case kTransparentPiece:
        if (fPieces.size() == kMostPieces)
            throw MeshError("it has more than " + std::to_string(kMostPieces) + " pieces");
        fPieces.push_back({.name = readText(count), .isTransparent = kind == kTransparentPiece});
        break;
    case kTriangles:
        fTriangles += count / 3;
        if (fTriangles > kMostTriangles)
            throw MeshError("it has more than " + std::to_string(kMostTriangles) + " triangles");
        readValues(piece().triangles, count);
        break;
    case kEdges:
        readValues(piece().edges, count);
        break;
    default:
        if (kind - kStream >= kStreamSlots)
            failBroken();
        readValues(piece().values[kind - kStream], count);
    }
}

void MeshWireInput::readBytes(void* bytes, std::size_t size)
{
    fTotal += size;
    if (fTotal > kMostBytes)
        throw MeshError("its arrays have more than " + std::to_string(kMostBytes >> 20) + " MB");
    char* at = static_cast<char*>(bytes);
    while (size != 0)
    {
        pollfd waiting{fDescriptor, POLLIN, 0};
        if (::poll(&waiting, 1, kWaitMilliseconds) <= 0)
        {
            fWhileWaiting();
            continue;
        }
        const ssize_t count = ::read(fDescriptor, at, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            throw CutOff();
        at += count;
        size -= static_cast<std::size_t>(count);
    }
}

std::string MeshWireInput::readText(std::size_t count)
{
    if (count > kMostText)
        failBroken();
    std::string text(count, '\0');
    readBytes(text.data(), count);
    return text;
}

template <class Value>
void MeshWireInput::readValues(std::vector<Value>& values, std::size_t count)
{
    static_assert(sizeof(Value) == 4);
    if (!values.empty())
        failBroken();
    while (values.size() < count)
    {
        const std::size_t have = values.size();
        values.resize(std::min(count, have + kStep));
        readBytes(values.data() + have, (values.size() - have) * sizeof(Value));
        fWhileWaiting();
    }
}

PartArrays& MeshWireInput::piece()
{
    if (fPieces.empty())
        failBroken();
    return fPieces.back();
}
