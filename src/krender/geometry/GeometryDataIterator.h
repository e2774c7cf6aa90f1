#pragma once
#include <krender/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>

class GeometryData;
class GeometryDataIndex;

/// Steps over the indices of one index list and points at the values of the current index in the list's streams. All is
/// borrowed.
///
/// The entries of the list are read as 64-bit values. The lists of the built-in shapes, and of most hosts, hold 32-bit
/// entries: to walk one of them make a list of GeometryDataIndex::widenedIndices() over the same streams, or use
/// indices()[position()] of the list itself and leave computeIndex() and the values alone.
class KRENDER_EXPORT GeometryDataIterator
{
public:
    GeometryDataIterator() noexcept = default;
    /// As reset().
    GeometryDataIterator(const GeometryDataIndex* index, const unsigned* textureSets) noexcept;

    /// Starts over at the list's first index, without a range; where several streams of one kind are there, the last one
    /// counts.
    /// @param index        null stands for an empty list
    /// @param textureSets  two set numbers: the streams of texture coordinates and tangents whose setIndex is the first
    ///                     one go to the first slot of their kind, those of the second one to the second. Null: they go
    ///                     to both, whatever their set.
    void reset(const GeometryDataIndex* index, const unsigned* textureSets) noexcept;
    /// Makes the walk end at `end` instead of the list's end, without moving: the range is to be set before the position
    /// has passed its end.
    /// @return  whether `end` is in the list; if not, the walk goes to the list's end
    bool setRange(unsigned long begin, unsigned long end) noexcept;
    /// Stays where it is at the end.
    void next() noexcept;
    [[nodiscard]] bool isDone() const noexcept { return fPosition == end(); }

    [[nodiscard]] const GeometryDataIndex* index() const noexcept { return fIndex; }
    [[nodiscard]] std::uint64_t position() const noexcept { return fPosition; }
    [[nodiscard]] std::uint64_t count() const noexcept { return fCount; }
    [[nodiscard]] std::uint64_t rangeBegin() const noexcept { return fRangeBegin; }
    [[nodiscard]] std::uint64_t rangeEnd() const noexcept { return fRangeEnd; }
    [[nodiscard]] bool useRange() const noexcept { return fUseRange; }
    [[nodiscard]] bool useNormal() const noexcept { return fUseNormal; }
    /// Whether normal() answers from the normals, as it does at first, or from the alternate normals.
    void setUseNormal(bool use) noexcept { fUseNormal = use; }

    /// `elementSize` times the entry at the position, read as the 64-bit value `position` times 8 bytes into the list.
    [[nodiscard]] unsigned long computeIndex(unsigned long elementSize) const noexcept;

    /// The values of the current index, taken to be floats. To be asked only for what the list has a stream of.
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
    [[nodiscard]] float* value(Slot slot) const noexcept
    {
        return static_cast<float*>(fStreams[slot]) + computeIndex(fElementSizes[slot]);
    }

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
