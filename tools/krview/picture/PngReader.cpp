#include "Picture.h"
#include "PictureReaders.h"
#include "PngRecord.h"

#include <array>
#include <string>

namespace
{

/// A number of four bytes, the highest first.
std::size_t numberAt(std::string_view bytes, std::size_t at)
{
    std::size_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

/// The fewest bytes that the rows of a picture have before they are compressed.
std::size_t rowBytes(std::size_t width, std::size_t height, unsigned char depth, unsigned char colours)
{
    constexpr std::array<unsigned char, 8> kChannels{1, 0, 3, 1, 2, 0, 4, 0}; // by the type of colours
    return height * (1 + width * kChannels[colours & 7] * depth / 8);
}

/// Compares what a PNG file claims with what it can hold. What libpng finds by itself is left to it.
void checkClaims(std::string_view bytes)
{
    constexpr std::size_t kSignature = 8;
    constexpr std::size_t kAround = 12; // the length, name and checksum of a chunk
    constexpr std::size_t kHeader = 13;
    constexpr std::size_t kMostRatio = 1032; // of the compression
    std::size_t dataBytes = 0;
    std::size_t at = kSignature;
    for (; at + kAround <= bytes.size(); at += kAround)
    {
        const std::size_t length = numberAt(bytes, at);
        if (length > bytes.size() - at - kAround)
            throw PictureError("a part of it is said to be longer than the file");
        if (bytes.substr(at + 4, 4) == "IDAT")
            dataBytes += length;
        at += length;
    }
    if (bytes.size() < kSignature + kAround + kHeader || numberAt(bytes, kSignature) != kHeader)
        return;
    const std::size_t width = numberAt(bytes, kSignature + 8);
    const std::size_t height = numberAt(bytes, kSignature + 12);
    checkSize(width, height);
    const auto depth = static_cast<unsigned char>(bytes[kSignature + 16]);
    const auto colours = static_cast<unsigned char>(bytes[kSignature + 17]);
    if (rowBytes(width, height, depth, colours) / kMostRatio > dataBytes)
        throw PictureError("it has fewer bytes than its pixels need");
}

} // namespace

Ref<PixelArray2D> decodePng(std::string_view bytes)
{
    checkClaims(bytes);
    PngRecord png;
    if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0)
        throw PictureError(png->message);
    png->format = PNG_FORMAT_RGBA;
    Ref<PixelArray2D> picture = newPicture(png->width, png->height);
    // A negative stride writes the rows from the last to the first.
    if (png_image_finish_read(&png, nullptr, picture->data(), -static_cast<png_int_32>(4 * png->width), nullptr) == 0)
        throw PictureError(png->message);
    return picture;
}
