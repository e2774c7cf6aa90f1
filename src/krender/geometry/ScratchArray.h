#pragma once
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

#include <sys/mman.h>

/// Uninitialised storage for one computation. A big array asks for huge pages: otherwise the page faults of its first use
/// cost more than the work on it.
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
        constexpr std::size_t kHugePage = std::size_t{2} << 20;
        const bool big = bytes >= kHugePage;
        const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
        void* storage = big ? std::aligned_alloc(kHugePage, rounded) : std::malloc(bytes);
        if (!storage && bytes != 0)
            throw std::bad_alloc();
        if (big)
            madvise(storage, rounded, MADV_HUGEPAGE); // where it is refused, small pages do as well
        return storage;
    }

    std::unique_ptr<T, Free> fStorage;
};
