#pragma once
#include <sys/mman.h>

#include <cstddef>
#include <cstdlib>
#include <limits>

namespace krCore
{

/// Uninitialised storage, to be released with std::free. A block of at least `threshold` bytes is aligned to huge pages
/// and advised for them: touching fresh small pages costs more than most of what is then done with the block.
/// @return  null when there is no memory, or when the size rounded up to whole pages is past the largest size
[[nodiscard]] inline void* allocateLarge(std::size_t bytes, std::size_t threshold) noexcept
{
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    if (bytes < threshold)
        return std::malloc(bytes);
    if (bytes > std::numeric_limits<std::size_t>::max() - (kHugePage - 1))
        return nullptr;
    const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
    void* storage = std::aligned_alloc(kHugePage, rounded);
    if (storage)
        madvise(storage, rounded, MADV_HUGEPAGE); // where it is refused, small pages do as well
    return storage;
}

} // namespace krCore
