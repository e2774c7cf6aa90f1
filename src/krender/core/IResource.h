#pragma once
#include <krender/Export.h>
#include <krender/core/SharedObject.h>
#include <krender/platform/String.h>

#include <cstdint>

/// A shared object with a name and a dirty mark. Its creator holds the first reference: the count starts at 1.
class KRENDER_EXPORT IResource : public krSharedObject::SharedObject
{
public:
    IResource();
    ~IResource() override;

    /// Replaces the name with a copy of the text; null gives the empty name.
    virtual void setName(const char* name);
    /// The name, never null; valid until the name changes.
    [[nodiscard]] virtual const char* name() const;
    /// Always true here.
    [[nodiscard]] virtual bool valid() const;
    /// True for a new resource, and until setDirty(false).
    [[nodiscard]] virtual bool isDirty();
    virtual void setDirty(bool dirty);

    /// The next id to be handed out, shared by all kinds of resources; geometry monitors also use it as a clock.
    static std::uint32_t fsUniqueIDGenerator;

protected:
    /// Takes the next id from the generator. No resource has the id 0: after the counter has wrapped, 1 is given out.
    [[nodiscard]] static std::uint32_t takeUniqueID() noexcept;

    /// For the host; the library neither reads nor changes it.
    std::int32_t fResourceKind = 6;

private:
    krString::CString fName;
    bool fDirty = true;
};
