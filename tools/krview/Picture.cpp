#include "Picture.h"

#include <common/OutputFiles.h>
#include <common/Source.h>

#include <krender/pixels/krColorFormatRGBAFixed8.h>

#include <png.h>

#include <array>
#include <cstddef>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

class PictureFormat : public krColorFormatRGBAFixed8
{
public:
    /// Pixel type 2 selects the 8-bit routines of the pixel arrays.
    PictureFormat() : krColorFormatRGBAFixed8(2) {}
};

/// Owns the control record of libpng.
class Png
{
public:
    Png() { fImage.version = PNG_IMAGE_VERSION; }
    Png(const Png&) = delete;
    Png& operator=(const Png&) = delete;
    ~Png() { png_image_free(&fImage); }

    png_image* operator&() noexcept { return &fImage; }
    png_image* operator->() noexcept { return &fImage; }

private:
    png_image fImage{};
};

constexpr std::size_t kGreatestSide = 16384;
constexpr std::size_t kMostPixels = std::size_t{64} << 20;
constexpr std::size_t kMostPngBytes = 4 * kMostPixels; // as many as they take without compression

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

/// Compares what a PNG file claims with what it can hold. What is no PNG file at all is left to libpng.
/// @return  what is wrong; null if it may be a picture
const char* whyNoPicture(std::string_view bytes)
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
            return "a part of it is said to be longer than the file";
        if (bytes.substr(at + 4, 4) == "IDAT")
            dataBytes += length;
        at += length;
    }
    if (bytes.size() < kSignature + kAround + kHeader || numberAt(bytes, kSignature) != kHeader)
        return nullptr;
    const std::size_t width = numberAt(bytes, kSignature + 8);
    const std::size_t height = numberAt(bytes, kSignature + 12);
    if (width > kGreatestSide || height > kGreatestSide || width * height > kMostPixels)
        return "it has more than 16384 pixels on a side, or more in all than 8192 times 8192";
    const auto depth = static_cast<unsigned char>(bytes[kSignature + 16]);
    const auto colours = static_cast<unsigned char>(bytes[kSignature + 17]);
    return rowBytes(width, height, depth, colours) / kMostRatio > dataBytes ? "it has fewer bytes than its pixels need"
                                                                            : nullptr;
}

} // namespace

const krSysPixelFormat& pictureFormat()
{
    static const PictureFormat kFormat;
    return kFormat;
}

Ref<PixelArray2D> newPicture(unsigned width, unsigned height)
{
    Ref<PixelArray2D> picture(new PixelArray2D(pictureFormat(), width, height));
    if (!picture->data())
        throw std::bad_alloc();
    return picture;
}

Ref<PixelArray2D> readPng(const std::string& path)
{
    const std::string bytes = krTools::readText(path, kMostPngBytes);
    const auto fail = [&path](const char* reason) -> void
    { throw krTools::FileError("cannot read '" + path + "': " + reason); };
    // libpng takes memory for what a file claims; what it can hold is looked for first.
    if (const char* reason = whyNoPicture(bytes))
        fail(reason);
    Png png;
    if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0)
        fail(png->message);
    png->format = PNG_FORMAT_RGBA;
    Ref<PixelArray2D> picture = newPicture(png->width, png->height);
    // A negative stride writes the rows from the last to the first.
    if (png_image_finish_read(&png, nullptr, picture->data(), -static_cast<png_int_32>(4 * png->width), nullptr) == 0)
        fail(png->message);
    return picture;
}

void writePng(const std::string& path, const PixelArray2D& picture)
{
    std::vector<png_byte> colours;
    const auto* pixels = static_cast<const png_byte*>(picture.data());
    for (std::size_t i = 0; i < std::size_t{picture.width()} * picture.height(); ++i)
        colours.insert(colours.end(), pixels + 4 * i, pixels + 4 * i + 3);

    Png png;
    png->width = picture.width();
    png->height = picture.height();
    png->format = PNG_FORMAT_RGB;
    const auto stride = -static_cast<png_int_32>(3 * png->width);
    png_alloc_size_t size = 0;
    std::string bytes;
    if (png_image_write_to_memory(&png, nullptr, &size, 0, colours.data(), stride, nullptr) != 0)
    {
        bytes.resize(size);
        if (png_image_write_to_memory(&png, bytes.data(), &size, 0, colours.data(), stride, nullptr) == 0)
            bytes.clear();
    }
    if (bytes.empty())
        throw krTools::FileError("cannot write '" + path + "': " + png->message);
    bytes.resize(size);
    krTools::OutputFiles files;
    files.add(path, std::move(bytes));
    files.publish();
}
