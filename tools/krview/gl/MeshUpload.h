#pragma once
#include <krender/geometry/GeometryLogicalGroup.h>
#include <krender/geometry/GeometryMonitor.h>

#include <cstdint>

/// Keeps the device copies of groups up to date and uploads only what has changed.
class MeshUpload
{
public:
    /// Uploads the streams that the monitor finds dirty or that have no copy, and the lists that have none.
    void update(GeometryLogicalGroup& group);

    /// The number of uploads and of bytes uploaded so far.
    [[nodiscard]] std::uint64_t uploads() const noexcept { return fUploads; }
    [[nodiscard]] std::uint64_t bytes() const noexcept { return fBytes; }

private:
    GeometryMonitor fMonitor;
    std::uint64_t fUploads = 0;
    std::uint64_t fBytes = 0;
};
