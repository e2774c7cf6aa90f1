#pragma once
#include <krender/Export.h>

#include <cstdint>

/// The device-side copy of a vertex stream or an index list (its hanger), made by the host's drawing code. The library
/// stores such pointers and deletes them through this destructor.
class KRENDER_EXPORT IHWMemoryObject
{
public:
    IHWMemoryObject() = default;
    IHWMemoryObject(const IHWMemoryObject&) = delete;
    IHWMemoryObject& operator=(const IHWMemoryObject&) = delete;
    virtual ~IHWMemoryObject();

    /// Bytes of device memory in use; kept by the host, never changed here.
    static std::uint32_t fsMemoryUsage;
};
