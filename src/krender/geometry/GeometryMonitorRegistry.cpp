#include <krender/geometry/GeometryMonitorRegistry.h>

#include <krender/core/IResource.h>
#include <krender/geometry/GeometryMonitor.h>
#include <krender/geometry/GeometryMonitorEntry.h>

#include <algorithm>

namespace
{

/// The monitor's entry, or the end.
template <class Entries>
auto findEntry(Entries& entries, const GeometryMonitor& monitor)
{
    return std::find_if(entries.begin(), entries.end(),
                        [&monitor](const GeometryMonitorEntry& entry) { return entry.monitorId == monitor.id(); });
}

} // namespace

unsigned GeometryMonitorRegistry::lastUpdateId(const GeometryMonitor& monitor) const noexcept
{
    const auto entry = findEntry(fEntries, monitor);
    return entry != fEntries.end() ? entry->updateId : 0;
}

void GeometryMonitorRegistry::syncUpdateId(const GeometryMonitor& monitor)
{
    const auto entry = findEntry(fEntries, monitor);
    if (entry != fEntries.end())
        entry->updateId = IResource::fsUniqueIDGenerator;
    else
        fEntries.push_back({monitor.id(), IResource::fsUniqueIDGenerator});
}
