#include "PngWriter.h"

#include "PngRecord.h"

#include <cstddef>
#include <stdexcept>
#include <vector>

std::string encodePng(const unsigned char* pixels, unsigned width, unsigned height, bool hasAlpha)
{
    std::vector<png_byte> colours;
    if (!hasAlpha)
    {
        const std::size_t count = std::size_t{width} * height;
        colours.reserve(3 * count);
        for (std::size_t i = 0; i < count; ++i)
            colours.insert(colours.end(), pixels + 4 * i, pixels + 4 * i + 3);
        pixels = colours.data();
    }
    PngRecord png;
    png->width = width;
    png->height = height;
    png->format = hasAlpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    // A negative stride takes the rows from the last to the first.
    const auto stride = -static_cast<png_int_32>((hasAlpha ? 4 : 3) * width);
    png_alloc_size_t size = 0;
    if (png_image_write_to_memory(&png, nullptr, &size, 0, pixels, stride, nullptr) == 0)
        throw std::runtime_error(png->message);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&png, bytes.data(), &size, 0, pixels, stride, nullptr) == 0)
        throw std::runtime_error(png->message);
    bytes.resize(size);
    return bytes;
}
