#include <krender/core/IResource.h>

#include <krender/core/SharedObject.h>
#include <krender/platform/String.h>

constinit std::uint32_t IResource::fsUniqueIDGenerator = 1;

IResource::IResource() : SharedObject(1) {}

IResource::~IResource() = default;

void IResource::setName(const char* name) { fName = krString::CString(name); }

const char* IResource::name() const { return fName.asChar(); }

bool IResource::valid() const { return true; }

bool IResource::isDirty() { return fDirty; }

void IResource::setDirty(bool dirty) { fDirty = dirty; }

std::uint32_t IResource::takeUniqueID() noexcept
{
    const std::uint32_t id = fsUniqueIDGenerator++;
    if (id != 0)
        return id;
    fsUniqueIDGenerator = 2;
    return 1;
}
