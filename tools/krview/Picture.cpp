#include "Picture.h"

#include <common/OutputFiles.h>
#include <common/Source.h>

#include <krender/pixels/krColorFormatRGBAFixed8.h>

#include <png.h>

#include <cstddef>
#include <new>
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
    constexpr unsigned kGreatestSide = 16384;
    const auto fail = [&path](const char* reason) -> void
    { throw krTools::FileError("cannot read '" + path + "': " + reason); };
    Png png;
    if (png_image_begin_read_from_file(&png, path.c_str()) == 0)
        fail(png->message);
    if (png->width > kGreatestSide || png->height > kGreatestSide)
        fail("it is larger than 16384 pixels on a side");
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
