#include "krender/pixels/private/PixelStorage.h"

#include "krender/core/private/HugePages.h"

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

void* allocatePixels(std::size_t bytes) noexcept { return krCore::allocateLarge(bytes, std::size_t{4} << 20); }

} // namespace krPixels
