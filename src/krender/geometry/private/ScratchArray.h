#pragma once
#include "krender/core/private/HugePages.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

/// Uninitialised storage for one computation.
/// @throws std::bad_alloc  when there is no memory, also where the size in bytes is beyond what size_t holds
template <class T>
class ScratchArray
{
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    /// @param count  may be 0
    explicit ScratchArray(std::size_t count) : fStorage(static_cast<T*>(allocate(count))) {}

    [[nodiscard]] T* get() const noexcept { return fStorage.get(); }

private:
    struct Free
    {
        void operator()(void* storage) const noexcept { std::free(storage); }
    };

    static void* allocate(std::size_t count)
    {
        if (count > PTRDIFF_MAX / sizeof(T))
            throw std::bad_alloc();
        void* storage = krCore::allocateLarge(count * sizeof(T), std::size_t{2} << 20);
        if (!storage && count != 0)
            throw std::bad_alloc();
        return storage;
    }

    std::unique_ptr<T, Free> fStorage;
};
