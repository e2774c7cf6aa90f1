#include "Comparison.h"

#include "Picture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace
{

constexpr std::size_t kColours = 3; ///< of the four components of a pixel

std::size_t pixelCount(const PixelArray2D& picture) { return std::size_t{picture.width()} * picture.height(); }

const std::uint8_t* pixelAt(const PixelArray2D& picture, std::size_t number)
{
    return static_cast<const std::uint8_t*>(picture.data()) + 4 * number;
}

/// @param sum  grows by the levels of all colours
unsigned levelsBetween(const std::uint8_t* a, const std::uint8_t* b, std::uint64_t& sum)
{
    unsigned greatest = 0;
    for (std::size_t i = 0; i < kColours; ++i)
    {
        const auto levels = static_cast<unsigned>(std::abs(a[i] - b[i]));
        sum += levels;
        greatest = std::max(greatest, levels);
    }
    return greatest;
}

} // namespace

Difference compare(const PixelArray2D& seen, const PixelArray2D& expected, unsigned tolerance)
{
    Difference difference;
    std::uint64_t sum = 0;
    std::size_t differing = 0;
    const std::size_t count = pixelCount(seen);
    for (std::size_t i = 0; i < count; ++i)
    {
        const unsigned levels = levelsBetween(pixelAt(seen, i), pixelAt(expected, i), sum);
        differing += levels > tolerance ? 1 : 0;
        if (levels <= difference.greatest)
            continue;
        difference.greatest = levels;
        difference.x = static_cast<unsigned>(i % seen.width());
        // The lowest row comes first.
        difference.y = seen.height() - 1 - static_cast<unsigned>(i / seen.width());
    }
    difference.mean = static_cast<double>(sum) / static_cast<double>(kColours * count);
    difference.share = static_cast<double>(differing) / static_cast<double>(count);
    return difference;
}

Ref<PixelArray2D> markDifferences(const PixelArray2D& seen, const PixelArray2D& expected, unsigned tolerance)
{
    Ref<PixelArray2D> marked = newPicture(seen.width(), seen.height());
    auto* to = static_cast<std::uint8_t*>(marked->data());
    for (std::size_t i = 0; i < pixelCount(seen); ++i, to += 4)
    {
        std::uint64_t sum = 0;
        const std::uint8_t* pixel = pixelAt(expected, i);
        const bool isFar = levelsBetween(pixelAt(seen, i), pixel, sum) > tolerance;
        const auto grey = static_cast<std::uint8_t>((pixel[0] + 2 * pixel[1] + pixel[2]) / 12);
        to[0] = isFar ? 255 : grey;
        to[1] = to[2] = isFar ? 0 : grey;
        to[3] = 255;
    }
    return marked;
}
