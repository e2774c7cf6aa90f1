#pragma once
#include <krender/Export.h>

#include <cstdint>

class GeometryDataIndex;
class GeometryLogicalGroup;

/// Steps over the index lists of a logical group, which it borrows.
class KRENDER_EXPORT GeometryLogicalIterator
{
public:
    GeometryLogicalIterator() noexcept = default;
    explicit GeometryLogicalIterator(const GeometryLogicalGroup* group) noexcept { reset(group); }

    /// Starts over, with as many lists as the group has now; null stands for a group without lists.
    void reset(const GeometryLogicalGroup* group) noexcept;
    /// Goes on to the next list; at the end it stays.
    void next() noexcept;
    [[nodiscard]] bool isDone() const noexcept { return fPosition == fCount; }
    /// The current index list, borrowed. Not to be called when done.
    [[nodiscard]] const GeometryDataIndex* dataIndexPointer() const noexcept;

private:
    std::uint64_t fPosition = 0;
    std::uint64_t fCount = 0;
    const GeometryLogicalGroup* fGroup = nullptr;
};
