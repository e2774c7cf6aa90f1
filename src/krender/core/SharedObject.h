#pragma once
#include <krender/Export.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <new>

/// The counted base of what the library and its hosts share.
namespace krSharedObject
{

/// The base of every object that crosses the library's boundary: an intrusive reference count, not atomic. Whoever keeps
/// a pointer calls ref(), and unref() when done with it; the unref() that takes the count to 0 ends the object.
/// `Ref` makes both calls for its owner.
class KRENDER_EXPORT SharedObject
{
public:
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;

    /// Adds a reference.
    /// @return  the new count
    virtual std::int32_t ref();
    /// Gives a reference up; at a count of 0 or below the object is destroyed and its storage goes back to the global
    /// operator delete.
    /// @return  the new count, 0 when the object was destroyed
    virtual std::int32_t unref();
    virtual ~SharedObject();

    /// The same for const objects, through the virtual operations: a reference may be held to what must not be changed.
    /// A class that overrides one of those hides these from pointers to itself; Ref calls past that.
    std::int32_t ref() const { return const_cast<SharedObject*>(this)->ref(); }
    std::int32_t unref() const { return const_cast<SharedObject*>(this)->unref(); }

    /// The global allocation. It is repeated here because the operator delete below would hide it.
    static void* operator new(std::size_t size);
    /// The same; null when there is no memory.
    static void* operator new(std::size_t size, const std::nothrow_t& tag) noexcept;
    /// Constructs in storage of the caller. unref() may end the object only where that storage came from the global
    /// operator new; elsewhere the caller calls the destructor.
    static void* operator new(std::size_t, void* storage) noexcept { return storage; }
    /// Does not compile when used, also by plain `new` of an over-aligned class: unref() returns storage to the global
    /// operator delete of default alignment. (Where this is a deleted function, g++ silently takes the plain form.)
    template <std::same_as<std::nothrow_t>... Tag>
    static void* operator new(std::size_t, std::align_val_t, const Tag&...) noexcept
    {
        static_assert(sizeof...(Tag) > 1, "a shared object cannot be over-aligned: unref() could not free its storage");
        return nullptr;
    }

    /// Reports an illegal delete on standard output and frees nothing: others may still hold references to the object.
    /// Shared objects end with unref(). A constructor that throws out of plain `new` comes here too, and its storage is
    /// lost.
    static void operator delete(void* object);
    /// Frees the storage after a constructor has thrown out of `new (std::nothrow)`.
    static void operator delete(void* storage, const std::nothrow_t& tag) noexcept;
    /// Leaves the storage with the caller after a constructor has thrown out of placement new.
    static void operator delete(void*, void*) noexcept {}

protected:
    /// @param references  the count to start with: 0, or 1 where the creator holds the first reference
    explicit SharedObject(std::int32_t references = 0) noexcept : fReferences(references) {}

private:
    mutable std::int32_t fReferences; // also counts for objects that were made const
};

} // namespace krSharedObject
