#pragma once
#include <krender/core/SharedObject.h>

/// The base of the host's hardware-side resources. Nobody holds a new one yet: its reference count starts at 0.
class KRENDER_EXPORT IBaseResource : public krSharedObject::SharedObject
{
public:
    /// What a lock allows.
    enum LockingMode : std::int32_t
    {
        kRead = 0,
        kWrite = 1,
        kReadWrite = 2,
    };

    IBaseResource() noexcept = default;
    ~IBaseResource() override;

    /// Gives the host's code access to the resource's memory.
    /// @param wait  whether to wait for the device
    /// @return  whether the lock is held; true here, where there is nothing to lock
    virtual bool lock(LockingMode mode, bool wait);
    /// Ends what lock began; does nothing here.
    virtual void unlock(LockingMode mode);
    /// False here.
    [[nodiscard]] virtual bool isLocked(LockingMode mode) const;
    /// A copy of the resource, owned by the caller; null here.
    /// @param withContents  whether to copy what the resource holds
    /// @param shareDevice   whether the copy may stand on the same device memory
    [[nodiscard]] virtual IBaseResource* duplicate(bool withContents, bool shareDevice);
    /// The device-side part of duplicate; null here.
    [[nodiscard]] virtual IBaseResource* duplicateInternal(bool withContents);
};
