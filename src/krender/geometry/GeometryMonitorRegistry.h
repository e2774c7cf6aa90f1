#pragma once
#include <krender/Export.h>
#include <krender/geometry/GeometryMonitorEntry.h>

#include <vector>

class GeometryMonitor;

/// The marks that monitors have set on one logical group.
class KRENDER_EXPORT GeometryMonitorRegistry
{
public:
    /// The monitor's mark; 0 without one.
    [[nodiscard]] unsigned lastUpdateId(const GeometryMonitor& monitor) const noexcept;

    /// Sets the monitor's mark to the present value of IResource::fsUniqueIDGenerator, which stays as it is.
    void syncUpdateId(const GeometryMonitor& monitor);
    /// Forgets all monitors.
    void reset() noexcept { fEntries.clear(); }

private:
    std::vector<GeometryMonitorEntry> fEntries; // one a monitor, in the order of their first marks
};
