#pragma once
#include <cstdint>

/// A monitor's mark on a logical group.
struct GeometryMonitorEntry
{
    std::uint32_t monitorId;
    std::uint32_t updateId; ///< the value of the id generator when the mark was set
};
