#include "krender/pixels/private/NormalMap.h"

#include "krender/pixels/private/Lanes.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace krPixels
{

namespace
{

/// What differs between 8-bit and float height fields.
template <class Component>
struct Coding;

template <>
struct Coding<unsigned char>
{
    static constexpr unsigned char kOpaque = 255;
    static constexpr float kSlopeDivisor = 255.0f;
    static constexpr bool kMarksNextRow = false;

    /// Slopes that overflow give NaN, which encodes as 0.
    static unsigned char encoded(float v) noexcept
    {
        const float level = (v + 1.0f) * 127.5f;
        return level >= 0.0f ? static_cast<unsigned char>(level) : 0;
    }

    static Float4 heights(const unsigned char* pixels) noexcept
    {
        return __builtin_convertvector(loadLanes<Int4>(pixels) & 0xFF, Float4);
    }

    static void store(const Float4& nx, const Float4& ny, const Float4& nz, unsigned char* pixels) noexcept
    {
        const auto levels = [](const Float4& v)
        { return __builtin_convertvector(__builtin_convertvector((v + 1.0f) * 127.5f, Int4), UInt4); };
        storeLanes(levels(nx) | levels(ny) << 8 | levels(nz) << 16 | 0xFF000000U, pixels);
    }
};

template <>
struct Coding<float>
{
    static constexpr float kOpaque = 1.0f;
    static constexpr float kSlopeDivisor = 1.0f;
    static constexpr bool kMarksNextRow = true;

    static float encoded(float v) noexcept { return (v + 1.0f) * 0.5f; }

    static Float4 heights(const float* pixels) noexcept { return Float4{pixels[0], pixels[4], pixels[8], pixels[12]}; }

    static void store(const Float4& nx, const Float4& ny, const Float4& nz, float* pixels) noexcept
    {
        const Float4 x = (nx + 1.0f) * 0.5f;
        const Float4 y = (ny + 1.0f) * 0.5f;
        const Float4 z = (nz + 1.0f) * 0.5f;
        for (int i = 0; i < 4; ++i, pixels += 4)
            storeLanes(Float4{x[i], y[i], z[i], kOpaque}, pixels);
    }
};

/// Converts a row's pixels four at a time, as far as whole groups with a right neighbour go.
/// @return  the first pixel that is not converted
template <class Component>
std::size_t convertQuads(Component* row, std::size_t w, float k) noexcept
{
    std::size_t x = 0;
    for (; x + 4 < w; x += 4)
    {
        Component* pixels = row + 4 * x;
        const Float4 height = Coding<Component>::heights(pixels);
        const Float4 dx = (height - Coding<Component>::heights(pixels + 4)) * k;
        const Float4 dy = (height - Coding<Component>::heights(pixels + 4 * w)) * k;
        const Float4 n = 1.0f / squareRoots(dx * dx + dy * dy + 1.0f);
        Coding<Component>::store(dx * n, dy * n, n, pixels);
    }
    return x;
}

/// Converts a row's pixels from x on, except the last one.
template <class Component>
void convertPixels(Component* row, std::size_t x, std::size_t w, float k) noexcept
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

template <class Component>
void convertImage(Component* data, std::size_t w, std::size_t h, float scale) noexcept
{
    if (!data || w == 0 || h == 0)
        return;
    const float k = scale / Coding<Component>::kSlopeDivisor;
    // With steeper slopes bytes may give NaN, which the quads cannot convert to integers.
    constexpr float kSteepest = 1e30f;
    const bool inQuads = std::is_same_v<Component, float> || std::fabs(k) <= kSteepest;
    Component* row = data;
    for (std::size_t y = 0; y + 1 < h; ++y)
    {
        convertPixels(row, inQuads ? convertQuads(row, w, k) : 0, w, k);
        row += 4 * w;
        // Deliberate: the last pixel, which has no right neighbour, keeps its height as first component.
        row[-3] = row[-7];
        row[-2] = row[-6];
        row[-1] = Coding<Component>::kOpaque;
        // Deliberate: the float form also sets the next row's first height, so that its first normal differs.
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
