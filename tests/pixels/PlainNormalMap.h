#pragma once
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <type_traits>

namespace plain
{

/// A normal map one pixel after the other, in place; the library's must have the same bits.
template <class Component>
void convertToNormalMap(Component* data, std::size_t w, std::size_t h, float scale)
{
    constexpr bool kIsFloat = std::is_same_v<Component, float>;
    const float k = kIsFloat ? scale : scale / 255.0f;
    const auto encoded = [](float v) { return static_cast<Component>((v + 1.0f) * (kIsFloat ? 0.5f : 127.5f)); };
    const auto opaque = static_cast<Component>(kIsFloat ? 1 : 255);
    Component* p = data;
    for (std::size_t y = 0; y + 1 < h; ++y)
    {
        for (std::size_t x = 0; x + 1 < w; ++x, p += 4)
        {
            const float dx = static_cast<float>(p[0] - p[4]) * k;
            const float dy = static_cast<float>(p[0] - p[4 * w]) * k;
            const float n = 1.0f / std::sqrt(dx * dx + dy * dy + 1.0f);
            p[0] = encoded(dx * n);
            p[1] = encoded(dy * n);
            p[2] = encoded(n);
            p[3] = opaque;
        }
        p[1] = p[-3];
        p[2] = p[-2];
        p[3] = opaque;
        p += 4;
        if (kIsFloat)
            p[0] = opaque;
    }
    std::copy_n(p - 4 * w, 4 * w, p);
}

} // namespace plain
