#pragma once
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <type_traits>
#include <vector>

/// The pixel routines written out plainly; the library's own must give the same bits.
namespace plain
{

struct Sizes
{
    unsigned srcW, srcH, dstW, dstH;
};

/// The range of cells that [low, high] reaches, along an axis of so many cells.
struct Range
{
    Range(double from, double to, unsigned size) : low(from), high(to)
    {
        first = static_cast<unsigned>(std::max(std::floor(low), 0.0));
        end = static_cast<unsigned>(std::floor(high) > size ? size : std::floor(high) + 1);
    }
    [[nodiscard]] double weight(unsigned cell) const
    {
        if (low > cell)
            return std::min(cell + 1.0, high) - low;
        return cell + 1.0 > high ? high - cell : 1.0;
    }
    double low, high;
    unsigned first, end;
};

/// Every weight of every pixel anew, one sum after the other.
template <class Component>
std::vector<Component> resize(const Component* src, Sizes s)
{
    std::vector<Component> dst(std::size_t{4} * s.dstW * s.dstH);
    Component* out = dst.data();
    const double sx = static_cast<double>(s.srcW) / s.dstW;
    const double sy = static_cast<double>(s.srcH) / s.dstH;
    for (unsigned j = 0; j < s.dstH; ++j)
        for (unsigned i = 0; i < s.dstW; ++i)
        {
            const Range rows((j - 0.5) * sy, (j + 0.5) * sy, s.srcH);
            const Range columns((i - 0.5) * sx, (i + 0.5) * sx, s.srcW);
            double total = 0;
            double sums[4] = {};
            for (unsigned r = rows.first; r < rows.end && r < s.srcH; ++r)
                for (unsigned c = columns.first; c < columns.end && c < s.srcW; ++c)
                {
                    const double w = columns.weight(c) * rows.weight(r);
                    total += w;
                    for (std::size_t k = 0; k < 4; ++k)
                        sums[k] += src[4 * (std::size_t{r} * s.srcW + c) + k] * w;
                }
            for (const double sum : sums)
            {
                const double value = (total != 0 ? sum / total : sum) + 0.00001;
                const double limit = std::is_same_v<Component, float> ? 1.0 : 255.0;
                *out++ = static_cast<Component>(value < 0 ? 0 : value > limit ? limit : value);
            }
        }
    return dst;
}

/// One pixel after the other, in place.
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
    for (std::size_t i = 0; i < 4 * w; ++i, ++p)
        *p = *(p - 4 * w);
}

} // namespace plain
