#include <krender/geometry/GeometryMonitor.h>

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryLogicalGroup.h>

constinit std::uint32_t GeometryMonitor::gNextFreeId = 0;

// The mark is the id that the next resource gets, and that one counts as clean: a consumer marks a group and then puts its
// own replacement of a stream in without seeing it as a change. The signed difference stays right when the generator
// wraps.
bool GeometryMonitor::isDirty(const GeometryData& data, const GeometryLogicalGroup& group) const noexcept
{
    const std::uint32_t last = group.monitorRegistry().lastUpdateId(*this);
    return last == 0 || static_cast<std::int32_t>(data.id() - last) > 0;
}

void GeometryMonitor::markClean(GeometryLogicalGroup& group) const { group.monitorRegistry().syncUpdateId(*this); }
