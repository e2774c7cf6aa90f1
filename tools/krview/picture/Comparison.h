#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>

/// How far two pictures of the same size are apart. A pixel differs by as many levels, of 255, as the red, green or blue
/// that differs most.
struct Difference
{
    double mean = 0;       ///< levels, of all reds, greens and blues
    unsigned greatest = 0; ///< levels
    unsigned x = 0;        ///< a pixel that differs most, from the left
    unsigned y = 0;        ///< from the top
    double share = 0;      ///< of the pixels that differ by more than the tolerance, 0 to 1
};

/// @param seen, expected  of the same size, in pictureFormat()
/// @param tolerance       levels
[[nodiscard]] Difference compare(const PixelArray2D& seen, const PixelArray2D& expected, unsigned tolerance);

/// Shows where two pictures differ by more than the tolerance: red on what is expected, in dark grey.
[[nodiscard]] Ref<PixelArray2D> markDifferences(const PixelArray2D& seen, const PixelArray2D& expected,
                                                unsigned tolerance);
