#pragma once
#include <krender/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>

class GeometryData;
class GeometryDataIndex;

/// Steps over the indices of one index list and points at the values of the current index in the list's streams. The
/// list and its streams are borrowed.
///
/// Deliberate: entries are read as 64-bit values, although index lists hold 32-bit entries. To walk a list, make another
/// one of its GeometryDataIndex::widenedIndices() over the same streams; or read indices()[position()] from the list
/// itself and do not call computeIndex() and the accessors below it.
class KRENDER_EXPORT GeometryDataIterator
{
public:
    GeometryDataIterator() noexcept = default;
    /// As reset().
    GeometryDataIterator(const GeometryDataIndex* index, const unsigned* textureSets) noexcept;

    /// Starts over at the list's first index, without a range. Of several streams of one kind, the last one is used.
    /// @param index        null stands for an empty list
    /// @param textureSets  two set numbers, borrowed for the call. textureCoord() and tangent() answer from the streams
    ///                     whose setIndex is the first number, textureCoord2() and tangent2() from those of the second.
    ///                     Null: both answer from the last stream of their kind, whatever its set.
    void reset(const GeometryDataIndex* index, const unsigned* textureSets) noexcept;
    /// Makes the walk end at `end` instead of at the list's end. Deliberate: the position does not move, so `begin` is
    /// only kept for the host, and a walk that is past `end` already is never done.
    /// @return  whether `end` is at most count(); if not, the walk ends at the list's end
    bool setRange(unsigned long begin, unsigned long end) noexcept;
    /// Goes on to the next index; at the end it stays.
    void next() noexcept;
    [[nodiscard]] bool isDone() const noexcept { return fPosition == end(); }

    [[nodiscard]] const GeometryDataIndex* index() const noexcept { return fIndex; }
    [[nodiscard]] std::uint64_t position() const noexcept { return fPosition; }
    [[nodiscard]] std::uint64_t count() const noexcept { return fCount; }
    [[nodiscard]] std::uint64_t rangeBegin() const noexcept { return fRangeBegin; }
    [[nodiscard]] std::uint64_t rangeEnd() const noexcept { return fRangeEnd; }
    [[nodiscard]] bool useRange() const noexcept { return fUseRange; }
    [[nodiscard]] bool useNormal() const noexcept { return fUseNormal; }
    /// Makes normal() answer from the normals, as it does at first, or from the alternate normals.
    void setUseNormal(bool use) noexcept { fUseNormal = use; }

    /// `elementSize` times the entry at the position, modulo 2^64. The entry is the 64-bit value that starts 8 x position()
    /// bytes into the list.
    [[nodiscard]] unsigned long computeIndex(unsigned long elementSize) const noexcept;

    // The values of the current index, taken to be floats: as many as the stream's elementSize. Not to be called when done,
    // or without a stream of the kind. Null when the place of the values in the array is beyond what size_t holds.

    [[nodiscard]] float* vertex() const noexcept { return value(kVertex); }
    [[nodiscard]] float* normal() const noexcept { return value(fUseNormal ? kNormal : kAlternateNormal); }
    [[nodiscard]] float* textureCoord() const noexcept { return value(kTextureCoord); }
    [[nodiscard]] float* textureCoord2() const noexcept { return value(kTextureCoord2); }
    [[nodiscard]] float* color() const noexcept { return value(kColor); }
    [[nodiscard]] float* weight() const noexcept { return value(kWeight); }
    [[nodiscard]] float* tangent() const noexcept { return value(kTangent); }
    [[nodiscard]] float* tangent2() const noexcept { return value(kTangent2); }
    [[nodiscard]] float* binormal() const noexcept { return value(kBinormal); }
    [[nodiscard]] float* userData() const noexcept { return value(kUserData); }

private:
    enum Slot : std::size_t
    {
        kVertex,
        kNormal,
        kAlternateNormal,
        kTextureCoord,
        kTextureCoord2,
        kColor,
        kWeight,
        kTangent,
        kTangent2,
        kBinormal,
        kUserData,
        kSlotCount,
    };

    void setSlot(Slot slot, const GeometryData& stream) noexcept;
    void setSlotsBySet(Slot first, Slot second, const GeometryData& stream, const unsigned* textureSets) noexcept;
    [[nodiscard]] std::uint64_t end() const noexcept { return fUseRange ? fRangeEnd : fCount; }
    [[nodiscard]] std::uint64_t entry() const noexcept;
    [[nodiscard]] float* value(Slot slot) const noexcept;

    const GeometryDataIndex* fIndex = nullptr;
    std::uint64_t fPosition = 0;
    std::uint64_t fCount = 0;
    std::uint64_t fRangeBegin = 0;
    std::uint64_t fRangeEnd = 0;
    bool fUseRange = false;
    std::array<void*, kSlotCount> fStreams{};
    std::array<std::uint32_t, kSlotCount> fElementSizes{};
    bool fUseNormal = true;
};
