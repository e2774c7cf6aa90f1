#pragma once
#include <krender/Export.h>

#include <cstddef>
#include <cstdint>

namespace krSharedObject
{

/// The base of every object that crosses the library's boundary: an intrusive reference count, not atomic. Whoever keeps
/// a pointer calls ref(), and unref() when done with it; the unref() that takes the count to 0 ends the object.
class KRENDER_EXPORT SharedObject
{
public:
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;

    /// Adds a reference.
    /// @return  the new count
    virtual std::int32_t ref();
    /// Gives a reference up; at a count of 0 or below the object is destroyed and its storage returned.
    /// @return  the new count, 0 when the object was destroyed
    virtual std::int32_t unref();
    virtual ~SharedObject();

    /// The same for const objects, through the virtual operations: a reference may be held to what must not be changed.
    /// A class that overrides one of those hides these from pointers to itself; Ref calls past that.
    std::int32_t ref() const { return const_cast<SharedObject*>(this)->ref(); }
    std::int32_t unref() const { return const_cast<SharedObject*>(this)->unref(); }

    /// The global allocation; it stands here as the partner of the operator delete below.
    static void* operator new(std::size_t size);
    /// Reports an illegal delete on standard output and frees nothing: what others still hold a reference to must not
    /// be pulled from under them. Shared objects end with unref().
    static void operator delete(void* object);

protected:
    /// @param references  the count to start with: 0, or 1 where the creator holds the first reference
    explicit SharedObject(std::int32_t references = 0) noexcept : fReferences(references) {}

private:
    mutable std::int32_t fReferences; // also counts for objects that were made const
};

} // namespace krSharedObject
