#pragma once
#include <krender/Export.h>

#include <cstdint>

class GeometryData;
class GeometryLogicalGroup;

/// Tells one consumer, for example a cache of device buffers, which streams of a group are new to it. All streams take
/// their ids from one generator, so a stream whose id is newer than the consumer's mark on the group was made since then.
class KRENDER_EXPORT GeometryMonitor
{
public:
    /// Takes the next id.
    GeometryMonitor() noexcept : fId(gNextFreeId++) {}
    GeometryMonitor(const GeometryMonitor&) = delete;
    GeometryMonitor& operator=(const GeometryMonitor&) = delete;

    [[nodiscard]] std::uint32_t id() const noexcept { return fId; }
    /// Whether the stream is newer than this monitor's mark on the group; true for every stream while there is no mark.
    /// Deliberate: the first stream or index list made after markClean() still counts as clean.
    [[nodiscard]] bool isDirty(const GeometryData& data, const GeometryLogicalGroup& group) const noexcept;
    /// Marks all streams that exist now as seen.
    void markClean(GeometryLogicalGroup& group) const;

    /// The id of the next monitor; the first one gets 0.
    static std::uint32_t gNextFreeId; // NOLINT(readability-identifier-naming): an interface's name

private:
    std::uint32_t fId;
};
