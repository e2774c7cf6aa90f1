#include "krender/pixels/private/PixelStorage.h"

#include "krender/core/private/HugePages.h"

#include <algorithm>
#include <cstdint>

namespace krPixels
{

std::optional<std::size_t> storageSize(std::initializer_list<std::size_t> factors) noexcept
{
    if (std::find(factors.begin(), factors.end(), std::size_t{0}) != factors.end())
        return 0;
    std::size_t size = 1;
    for (const std::size_t factor : factors)
    {
        if (factor > PTRDIFF_MAX / size)
            return std::nullopt;
        size *= factor;
    }
    return size;
}

void* allocateRGBA(std::size_t componentSize, unsigned w, unsigned h, unsigned d) noexcept
{
    const std::size_t bytes = storageSize({4 * componentSize, w, h, d}).value_or(0);
    return bytes != 0 ? krCore::allocateLarge(bytes, std::size_t{4} << 20) : nullptr;
}

} // namespace krPixels
