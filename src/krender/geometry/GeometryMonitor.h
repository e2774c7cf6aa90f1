#pragma once
#include <krender/Export.h>

#include <cstdint>

class GeometryData;
class GeometryLogicalGroup;

/// One consumer's view of what has changed, for example of a cache of device buffers. Streams draw their ids from one
/// generator, so a stream with an id newer than the consumer's mark on a group was made since the consumer looked.
class KRENDER_EXPORT GeometryMonitor
{
public:
    GeometryMonitor() noexcept : fId(gNextFreeId++) {}
    GeometryMonitor(const GeometryMonitor&) = delete;
    GeometryMonitor& operator=(const GeometryMonitor&) = delete;

    [[nodiscard]] std::uint32_t id() const noexcept { return fId; }
    /// Whether the stream is newer than the mark on the group; true for every stream while there is no mark. The first
    /// stream made after markClean() still counts as clean.
    [[nodiscard]] bool isDirty(const GeometryData& data, const GeometryLogicalGroup& group) const noexcept;
    /// Marks all that the group holds as seen.
    void markClean(GeometryLogicalGroup& group) const;

    /// The id of the next monitor; the first one has 0.
    static std::uint32_t gNextFreeId;

private:
    std::uint32_t fId;
};
