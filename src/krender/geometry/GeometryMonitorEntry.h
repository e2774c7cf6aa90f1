#pragma once
#include <cstdint>

/// Which update of a logical group a monitor has seen.
struct GeometryMonitorEntry
{
    std::uint32_t monitorId;
    std::uint32_t updateId; ///< the id generator's value at the monitor's last mark
};
