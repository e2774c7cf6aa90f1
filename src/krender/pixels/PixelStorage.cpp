#include "PixelStorage.h"

#include <cstdlib>

#include <sys/mman.h>

namespace krPixels
{

std::optional<std::uint32_t> product32(std::initializer_list<std::uint32_t> factors) noexcept
{
    std::uint32_t product = 1;
    for (const std::uint32_t factor : factors)
        if (__builtin_mul_overflow(product, factor, &product))
            return std::nullopt;
    return product;
}

void* allocatePixels(std::size_t bytes) noexcept
{
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    if (bytes < 2 * kHugePage)
        return std::malloc(bytes);
    const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
    void* pixels = std::aligned_alloc(kHugePage, rounded);
    if (pixels != nullptr)
        madvise(pixels, rounded, MADV_HUGEPAGE); // advice only: without huge pages everything works as well
    return pixels;
}

} // namespace krPixels
