#pragma once
#include <cstddef>
#include <initializer_list>
#include <optional>

namespace krPixels
{

/// The product of the factors of a size in bytes, or nothing when it is more than any object can have.
[[nodiscard]] std::optional<std::size_t> storageSize(std::initializer_list<std::size_t> factors) noexcept;

/// Storage for w x h x d RGBA pixels, not initialised; ends with std::free.
/// @param componentSize  in bytes
/// @return  null when a dimension is 0, when the size overflows, and when there is no memory
[[nodiscard]] void* allocateRGBA(std::size_t componentSize, unsigned w, unsigned h, unsigned d) noexcept;

} // namespace krPixels
