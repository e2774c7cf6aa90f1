#include "Image.h"

#include <png.h>

#include <cmath>
#include <cstddef>

Image::Pixel Image::at(unsigned x, unsigned y) const
{
    const std::uint8_t* p = &bytes[3 * (std::size_t{width} * y + x)];
    return {p[0], p[1], p[2]};
}

std::vector<double> Image::brightness() const
{
    std::vector<double> values;
    for (std::size_t i = 0; i + 2 < bytes.size(); i += 3)
        values.push_back((bytes[i] + bytes[i + 1] + bytes[i + 2]) / 3.0);
    return values;
}

Image readImage(const std::string& path)
{
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    Image image;
    if (png_image_begin_read_from_file(&png, path.c_str()) == 0)
        return image;
    png.format = PNG_FORMAT_RGB;
    image.bytes.resize(PNG_IMAGE_SIZE(png));
    if (png_image_finish_read(&png, nullptr, image.bytes.data(), 0, nullptr) == 0)
        return {};
    image.width = png.width;
    image.height = png.height;
    return image;
}

void writeImage(const std::string& path, unsigned side,
                const std::function<Image::Pixel(unsigned x, unsigned y)>& pixel)
{
    std::vector<std::uint8_t> bytes;
    for (unsigned y = 0; y < side; ++y)
        for (unsigned x = 0; x < side; ++x)
            for (const int component : pixel(x, y))
                bytes.push_back(static_cast<std::uint8_t>(component));
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    png.width = png.height = side;
    png.format = PNG_FORMAT_RGB;
    png_image_write_to_file(&png, path.c_str(), 0, bytes.data(), 0, nullptr);
}

Spread spreadOf(const std::vector<double>& values)
{
    Spread spread;
    for (const double value : values)
        spread.mean += value / static_cast<double>(values.size());
    double squares = 0;
    for (const double value : values)
        squares += (value - spread.mean) * (value - spread.mean) / static_cast<double>(values.size());
    spread.deviation = std::sqrt(squares);
    return spread;
}
