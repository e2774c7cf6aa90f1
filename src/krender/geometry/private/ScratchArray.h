#pragma once
#include "krender/core/private/HugePages.h"

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

/// Uninitialised storage for one computation.
template <class T>
class ScratchArray
{
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    /// @param count  may be 0
    explicit ScratchArray(std::size_t count) : fStorage(static_cast<T*>(allocate(count * sizeof(T)))) {}

    [[nodiscard]] T* get() const noexcept { return fStorage.get(); }

private:
    struct Free
    {
        void operator()(void* storage) const noexcept { std::free(storage); }
    };

    static void* allocate(std::size_t bytes)
    {
        void* storage = krCore::allocateLarge(bytes, std::size_t{2} << 20);
        if (!storage && bytes != 0)
            throw std::bad_alloc();
        return storage;
    }

    std::unique_ptr<T, Free> fStorage;
};
