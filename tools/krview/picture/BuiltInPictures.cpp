#include "BuiltInPictures.h"

#include "Directions.h"
#include "Parallel.h"
#include "Picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>

namespace
{

using Colour = std::array<double, 4>;

constexpr unsigned kSide = 256;
constexpr unsigned kVolumeSide = 32;

Colour blend(const Colour& a, const Colour& b, double share)
{
    Colour result{};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = a[i] + share * (b[i] - a[i]);
    return result;
}

Colour grey(double value) { return {value, value, value, 1}; }

/// Fills a new array.
/// @param colourAt  the colour at a column, row and slice
template <class Array, class ColourAt>
Ref<Array> filled(Array* array, const ColourAt& colourAt)
{
    Ref<Array> held(array);
    auto* const pixels = static_cast<std::uint8_t*>(array->data());
    if (!pixels)
        throw std::bad_alloc();
    const unsigned height = array->height();
    inParallel(std::size_t{height} * array->depth(),
               [&](std::size_t row)
               {
                   const auto y = static_cast<unsigned>(row % height);
                   const auto z = static_cast<unsigned>(row / height);
                   std::uint8_t* pixel = pixels + 4 * row * array->width();
                   for (unsigned x = 0; x < array->width(); ++x)
                       for (const double component : colourAt(x, y, z))
                           *pixel++ = static_cast<std::uint8_t>(std::lround(255 * std::clamp(component, 0.0, 1.0)));
               });
    return held;
}

/// A pseudo-random number from 0 to 1 for each point of the lattice.
double latticeValue(unsigned x, unsigned y, unsigned z)
{
    std::uint32_t hash = x * 0x8da6b343u + y * 0xd8163841u + z * 0xcb1ab31fu;
    hash = (hash ^ (hash >> 13)) * 0x85ebca6bu;
    hash = (hash ^ (hash >> 16)) * 0xc2b2ae35u;
    return (hash >> 8) / double{1 << 24};
}

/// Value noise in several octaves, with a period of 1 on every axis.
double noise(double x, double y, double z, unsigned cells, unsigned octaves)
{
    double sum = 0;
    double weight = 0.5;
    for (unsigned octave = 0; octave < octaves; ++octave, cells *= 2, weight /= 2)
    {
        std::array<unsigned, 3> cell{};
        std::array<double, 3> within{};
        const std::array<double, 3> place{x * cells, y * cells, z * cells};
        for (std::size_t i = 0; i < 3; ++i)
        {
            cell[i] = static_cast<unsigned>(place[i]);
            const double t = place[i] - cell[i];
            within[i] = t * t * (3 - 2 * t);
        }
        double value = 0;
        for (unsigned corner = 0; corner < 8; ++corner)
        {
            std::array<unsigned, 3> at{};
            double share = 1;
            for (std::size_t i = 0; i < 3; ++i)
            {
                const unsigned step = corner >> i & 1;
                at[i] = (cell[i] + step) % cells;
                share *= step != 0 ? within[i] : 1 - within[i];
            }
            value += share * latticeValue(at[0], at[1], at[2] + 64 * octave);
        }
        sum += weight * value;
    }
    return sum / (1 - 2 * weight);
}

Colour checker(unsigned x, unsigned y, unsigned)
{
    // As many squares as the built-in shapes have sides. The shipped materials read alpha as the strength of highlights.
    constexpr unsigned kSquares = 10;
    return (x * kSquares / kSide + y * kSquares / kSide) % 2 == 0 ? Colour{0.93, 0.88, 0.78, 0.3}
                                                                  : Colour{0.13, 0.33, 0.55, 1};
}

Colour noisePixel(unsigned x, unsigned y, unsigned)
{
    return grey(noise(double{1} * x / kSide, double{1} * y / kSide, 0, 8, 4));
}

Colour skyPixel(unsigned x, unsigned y, unsigned)
{
    const double cloud = noise(double{1} * x / kSide, double{1} * y / kSide, 0, 4, 5);
    return blend({0.25, 0.5, 0.85, 0.3}, {1, 1, 1, 0.3}, std::clamp(4 * cloud - 1.7, 0.0, 1.0));
}

/// The colour of the surroundings in a direction.
Colour surroundings(const Direction<double>& direction)
{
    constexpr Direction<double> kSun{0.45, 0.6, 0.66};
    const auto [x, y, z] = direction;
    const double length = std::sqrt(x * x + y * y + z * z);
    const double height = y / length;
    constexpr Colour kHorizon{0.86, 0.89, 0.92, 1};
    if (height < 0)
    {
        const double tileX = std::floor(2 * x / -y);
        const double tileZ = std::floor(2 * z / -y);
        const bool dark = std::fmod(std::abs(tileX + tileZ), 2) > 0.5;
        return blend(dark ? Colour{0.25, 0.22, 0.2, 1} : Colour{0.62, 0.58, 0.52, 1}, kHorizon, std::exp(6 * height));
    }
    const double towardsSun = (x * kSun[0] + y * kSun[1] + z * kSun[2]) / length;
    const Colour sky = blend(kHorizon, {0.2, 0.42, 0.78, 1}, std::pow(height, 0.6));
    return blend(sky, grey(1), std::clamp(std::pow(std::max(towardsSun, 0.0), 60.0) * 1.5, 0.0, 1.0));
}

struct NamedPicture
{
    const char* name;
    Colour (*colourAt)(unsigned x, unsigned y, unsigned z);
};

constexpr std::array<NamedPicture, 3> kPictures{{{"checker", checker}, {"noise", noisePixel}, {"sky", skyPixel}}};

} // namespace

const std::vector<std::string>& builtInPictureNames()
{
    static const std::vector<std::string> kNames = []
    {
        std::vector<std::string> names;
        names.reserve(kPictures.size());
        for (const NamedPicture& picture : kPictures)
            names.emplace_back(picture.name);
        return names;
    }();
    return kNames;
}

Ref<PixelArray2D> builtInPicture(const std::string& name)
{
    const auto* const found =
        std::find_if(kPictures.begin(), kPictures.end(), [&](const NamedPicture& p) { return p.name == name; });
    return filled(new PixelArray2D(pictureFormat(), kSide, kSide), found->colourAt);
}

Ref<PixelArray1D> builtInRamp()
{
    return filled(new PixelArray1D(pictureFormat(), kSide),
                  [](unsigned x, unsigned, unsigned) { return grey(double{1} * x / (kSide - 1)); });
}

Ref<PixelArray3D> builtInNoise()
{
    return filled(new PixelArray3D(pictureFormat(), kVolumeSide, kVolumeSide, kVolumeSide),
                  [](unsigned x, unsigned y, unsigned z) {
                      return grey(noise(double{1} * x / kVolumeSide, double{1} * y / kVolumeSide,
                                        double{1} * z / kVolumeSide, 4, 3));
                  });
}

Ref<PixelArrayCubeMap> surroundingsPicture(unsigned side)
{
    return filled(
        new PixelArrayCubeMap(pictureFormat(), side, side), [side](unsigned x, unsigned y, unsigned face)
        { return surroundings(faceDirection(face, pixelCentre<double>(x, side), pixelCentre<double>(y, side))); });
}
