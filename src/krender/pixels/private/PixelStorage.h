#pragma once
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>

namespace krPixels
{

/// The product of some counts, or nothing when it does not fit 32 bits.
[[nodiscard]] std::optional<std::uint32_t> product32(std::initializer_list<std::uint32_t> factors) noexcept;

/// Storage for the pixels of an image, not initialised; ends with std::free.
/// @return  null when there is none
[[nodiscard]] void* allocatePixels(std::size_t bytes) noexcept;

/// Storage for w x h x d pixels of four components.
/// @return  null when a dimension is 0, when the number of components does not fit 32 bits, and when there is no memory
template <class Component>
[[nodiscard]] void* allocateRGBA(unsigned w, unsigned h, unsigned d) noexcept
{
    const auto components = product32({4, w, h, d});
    return components.value_or(0) != 0 ? allocatePixels(*components * sizeof(Component)) : nullptr;
}

} // namespace krPixels
