#include "NormalMap.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace krPixels
{

namespace
{

/// What differs between 8-bit and float height fields.
template <typename Component>
struct Coding;

template <>
struct Coding<unsigned char>
{
    static constexpr unsigned char kOpaque = 255;
    static constexpr float kSlopeDivisor = 255.0f;
    static constexpr bool kMarksNextRow = false;

    static unsigned char encoded(float v) noexcept
    {
        // Heights whose scaled difference overflows have no direction; not-a-number encodes as 0.
        const float level = (v + 1.0f) * 127.5f;
        return level >= 0.0f ? static_cast<unsigned char>(level) : 0;
    }
};

template <>
struct Coding<float>
{
    static constexpr float kOpaque = 1.0f;
    static constexpr float kSlopeDivisor = 1.0f;
    static constexpr bool kMarksNextRow = true;

    static float encoded(float v) noexcept { return (v + 1.0f) * 0.5f; }
};

/// The normals of a row's pixels from x on, without the last one.
template <typename Component>
void convertRow(Component* row, std::size_t x, std::size_t w, float k) noexcept
{
    for (; x + 1 < w; ++x)
    {
        Component* pixel = row + 4 * x;
        const float dx = static_cast<float>(pixel[0] - pixel[4]) * k;
        const float dy = static_cast<float>(pixel[0] - pixel[4 * w]) * k;
        const float n = 1.0f / std::sqrt(dx * dx + dy * dy + 1.0f);
        pixel[0] = Coding<Component>::encoded(dx * n);
        pixel[1] = Coding<Component>::encoded(dy * n);
        pixel[2] = Coding<Component>::encoded(n);
        pixel[3] = Coding<Component>::kOpaque;
    }
}

template <typename Component>
void convertImage(Component* data, std::size_t w, std::size_t h, float scale) noexcept
{
    if (data == nullptr || w == 0 || h == 0)
        return;
    const float k = scale / Coding<Component>::kSlopeDivisor;
    Component* row = data;
    for (std::size_t y = 0; y + 1 < h; ++y)
    {
        convertRow(row, 0, w, k);
        row += 4 * w;
        // The last pixel has no right neighbour. It keeps its height, by which hosts that build a map tile by tile join
        // the next tile, and leans like the pixel before it.
        row[-3] = row[-7];
        row[-2] = row[-6];
        row[-1] = Coding<Component>::kOpaque;
        // The float form has always marked the next pixel as well, and existing maps were baked with that first column.
        if constexpr (Coding<Component>::kMarksNextRow)
            row[0] = 1.0f;
    }
    std::memcpy(row, row - 4 * w, 4 * w * sizeof(Component));
}

} // namespace

void convertToNormalMap(unsigned char* data, unsigned w, unsigned h, float scale) noexcept
{
    convertImage(data, w, h, scale);
}

void convertToNormalMap(float* data, unsigned w, unsigned h, float scale) noexcept { convertImage(data, w, h, scale); }

} // namespace krPixels
