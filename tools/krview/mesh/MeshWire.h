#pragma once
#include "PartArrays.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What the process that reads a mesh file tells krview: records, each of a kind, the number of its values, and those,
// which are bytes of text or words of four bytes.

/// The writing end.
class MeshWireOutput
{
public:
    /// @param descriptor  borrowed
    explicit MeshWireOutput(int descriptor) noexcept : fDescriptor(descriptor) {}

    /// How much of the work is done, 0 to 1.
    void sendShare(float share) const;
    /// A file that the mesh consists of or is missing.
    void sendFile(std::string_view path) const;
    /// Why there is no mesh, instead of an end.
    void sendFailure(std::string_view text) const;
    /// Some triangles. Those of one name, transparency and kinds of streams are one part.
    void sendPiece(const PartArrays& piece) const;
    void sendEnd() const;

private:
    void send(std::uint32_t kind, const void* values, std::size_t count, std::size_t valueSize) const;

    int fDescriptor;
};

/// The reading end, which believes nothing that it is told.
class MeshWireInput
{
public:
    /// @param descriptor  borrowed
    /// @param whileWaiting  called several times a second as long as nothing comes; may throw
    MeshWireInput(int descriptor, std::function<void()> whileWaiting)
        : fDescriptor(descriptor), fWhileWaiting(std::move(whileWaiting))
    {
    }

    /// Reads the next record. Throws a MeshError when it makes no sense or there is too much.
    /// @return  false when nothing more comes
    bool readRecord();

    [[nodiscard]] float share() const noexcept { return fShare; } ///< negative as long as it is not known
    [[nodiscard]] const std::vector<std::string>& files() const noexcept { return fFiles; }
    [[nodiscard]] const std::string& failure() const noexcept { return fFailure; }
    [[nodiscard]] bool isWhole() const noexcept { return fIsWhole; }
    /// The pieces, whose entries and values may be any.
    [[nodiscard]] std::vector<PartArrays>& pieces() noexcept { return fPieces; }

private:
    void readRecord(std::uint32_t kind, std::size_t count);
    void readBytes(void* bytes, std::size_t size);
    std::string readText(std::size_t count);
    template <class Value>
    void readValues(std::vector<Value>& values, std::size_t count);
    [[nodiscard]] PartArrays& piece();

    int fDescriptor;
    std::function<void()> fWhileWaiting;
    std::size_t fTotal = 0; ///< bytes
    std::size_t fTriangles = 0;
    float fShare = -1;
    std::vector<std::string> fFiles;
    std::vector<PartArrays> fPieces;
    std::string fFailure;
    bool fIsWhole = false;
};
