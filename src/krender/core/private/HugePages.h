#pragma once
#include <cstddef>
#include <cstdlib>

#include <sys/mman.h>

namespace krCore
{

/// Uninitialised storage that ends with std::free. A block of at least `threshold` bytes is aligned and advised for huge
/// pages: the faults of touching fresh small pages cost more than most of what is done with them.
/// @return  null when there is no memory
[[nodiscard]] inline void* allocateLarge(std::size_t bytes, std::size_t threshold) noexcept
{
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    if (bytes < threshold)
        return std::malloc(bytes);
    const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
    void* storage = std::aligned_alloc(kHugePage, rounded);
    if (storage)
        madvise(storage, rounded, MADV_HUGEPAGE); // where it is refused, small pages do as well
    return storage;
}

} // namespace krCore
