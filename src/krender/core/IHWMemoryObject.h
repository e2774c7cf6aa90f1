#pragma once
#include <krender/Export.h>

#include <cstdint>

/// The device's copy of a vertex stream or an index list (its hanger), made by the host's drawing code. The stream or
/// list owns it and deletes it through this destructor.
class KRENDER_EXPORT IHWMemoryObject
{
public:
    IHWMemoryObject() = default;
    IHWMemoryObject(const IHWMemoryObject&) = delete;
    IHWMemoryObject& operator=(const IHWMemoryObject&) = delete;
    virtual ~IHWMemoryObject();

    /// Bytes of device memory in use; counted by the host, never changed here.
    static std::uint32_t fsMemoryUsage;
};
