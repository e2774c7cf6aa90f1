#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// A picture of three bytes a pixel, the uppermost row first.
struct Image
{
    using Pixel = std::array<int, 3>;

    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint8_t> bytes;

    [[nodiscard]] Pixel at(unsigned x, unsigned y) const;
    /// The brightness of every pixel, 0 to 255.
    [[nodiscard]] std::vector<double> brightness() const;
};

/// Reads a PNG file; an empty picture when it cannot be read.
[[nodiscard]] Image readImage(const std::string& path);

/// Writes a PNG file of square pictures whose pixels a function gives, the uppermost row first.
void writeImage(const std::string& path, unsigned side,
                const std::function<Image::Pixel(unsigned x, unsigned y)>& pixel);

/// Mean and standard deviation.
struct Spread
{
    double mean = 0;
    double deviation = 0;
};
[[nodiscard]] Spread spreadOf(const std::vector<double>& values);
