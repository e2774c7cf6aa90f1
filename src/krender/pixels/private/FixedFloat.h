#pragma once
#include <cstddef>

namespace krPixels
{

/// The low 8 bits of -trunc(component + 0.5), for each of count components.
void convert(const float* src, std::size_t count, unsigned char* dst) noexcept;

/// (byte + 0.5) / 255, for each of count components.
void convert(const unsigned char* src, std::size_t count, float* dst) noexcept;

/// A converted copy of an RGBA image in storage from the format's allocate.
/// @return  null when src is null and when allocate returns null
template <class Component, class Format, class Source>
[[nodiscard]] Component* converted(const Format& format, const Source* src, unsigned w, unsigned h, unsigned d)
{
    if (!src || (w == 0 && h == 0 && d == 0))
        return nullptr;
    auto* pixels = static_cast<Component*>(format.allocate(w, h, d));
    if (pixels)
        convert(src, std::size_t{4} * w * h * d, pixels);
    return pixels;
}

} // namespace krPixels
