#pragma once
#include <krender/Export.h>
#include <krender/core/SharedObject.h>

#include <cstdint>

/// The base of the host's hardware-side resources. Its reference count starts at 0: the creator must call ref() to hold it.
class KRENDER_EXPORT IBaseResource : public krSharedObject::SharedObject
{
public:
    /// The access that a lock grants.
    enum LockingMode : std::int32_t
    {
        kRead = 0,
        kWrite = 1,
        kReadWrite = 2,
    };

    IBaseResource() noexcept = default;
    ~IBaseResource() override;

    /// Gives access to the resource's memory.
    /// @param wait  whether to wait for the device
    /// @return  whether the lock is held; true here, as there is nothing to lock
    virtual bool lock(LockingMode mode, bool wait);
    /// Ends what lock began; does nothing here.
    virtual void unlock(LockingMode mode);
    /// Whether such a lock is held; false here.
    [[nodiscard]] virtual bool isLocked(LockingMode mode) const;
    /// A copy of the resource, owned by the caller; null here.
    /// @param withContents  whether to copy the contents too
    /// @param shareDevice   whether the copy may share the device memory
    [[nodiscard]] virtual IBaseResource* duplicate(bool withContents, bool shareDevice);
    /// The device-side part of duplicate; null here.
    [[nodiscard]] virtual IBaseResource* duplicateInternal(bool withContents);
};
