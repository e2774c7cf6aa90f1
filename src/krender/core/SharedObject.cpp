#include <krender/core/SharedObject.h>

#include <cstdio>

namespace krSharedObject
{

std::int32_t SharedObject::ref() { return ++fReferences; }

std::int32_t SharedObject::unref()
{
    if (--fReferences > 0)
        return fReferences;
    // The class's own operator delete frees nothing, so the destructor and the global one are called here. The storage
    // starts where the most derived object does, which need not be where this base stands.
    void* storage = dynamic_cast<void*>(this);
    this->~SharedObject();
    ::operator delete(storage);
    return 0;
}

SharedObject::~SharedObject() = default;

void* SharedObject::operator new(std::size_t size) { return ::operator new(size); }

void* SharedObject::operator new(std::size_t size, const std::nothrow_t& tag) noexcept
{
    return ::operator new(size, tag);
}

void SharedObject::operator delete(void*) { std::fputs("krSharedObject::delete called illegally (use unref)", stdout); }

void SharedObject::operator delete(void* storage, const std::nothrow_t& tag) noexcept
{
    ::operator delete(storage, tag);
}

} // namespace krSharedObject
