#include <krender/geometry/GeometryMonitor.h>

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryLogicalGroup.h>
#include <krender/geometry/GeometryMonitorRegistry.h>

constinit std::uint32_t GeometryMonitor::gNextFreeId = 0;

// Deliberate: the mark is the id that is taken next, so the stream that takes it counts as clean. The difference is signed
// so that it stays right when the generator wraps.
bool GeometryMonitor::isDirty(const GeometryData& data, const GeometryLogicalGroup& group) const noexcept
{
    const std::uint32_t last = group.monitorRegistry().lastUpdateId(*this);
    return last == 0 || static_cast<std::int32_t>(data.id() - last) > 0;
}

void GeometryMonitor::markClean(GeometryLogicalGroup& group) const { group.monitorRegistry().syncUpdateId(*this); }
