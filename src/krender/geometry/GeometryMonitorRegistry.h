#pragma once
#include <krender/Export.h>
#include <krender/geometry/GeometryMonitorEntry.h>

#include <vector>

class GeometryMonitor;

/// What a logical group knows of its monitors: one entry each, in the order in which they first synchronised.
class KRENDER_EXPORT GeometryMonitorRegistry
{
public:
    /// The monitor's mark, 0 when it has none.
    [[nodiscard]] unsigned lastUpdateId(const GeometryMonitor& monitor) const noexcept;

    /// Sets the monitor's mark to the id that the next resource will get.
    void syncUpdateId(const GeometryMonitor& monitor);
    /// Forgets all monitors.
    void reset() noexcept { fEntries.clear(); }

private:
    std::vector<GeometryMonitorEntry> fEntries;
};
