#include "Picture.h"

#include "PictureReaders.h"
#include "PngWriter.h"

#include <common/OutputFiles.h>
#include <common/Source.h>

#include <krender/geometry/ParticleData.h>
#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <algorithm>
#include <array>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

/// Pixel type 2 selects the 8-bit routines of the pixel arrays, 4 those for floats.
class PictureFormat : public krColorFormatRGBAFixed8
{
public:
    PictureFormat() : krColorFormatRGBAFixed8(2) {}
};

class LightFormat : public krColorFormatRGBAFloat
{
public:
    LightFormat() : krColorFormatRGBAFloat(4) {}
};

Ref<PixelArray2D> newArray(const krSysPixelFormat& format, unsigned width, unsigned height)
{
    Ref<PixelArray2D> picture(new PixelArray2D(format, width, height));
    if (!picture->data())
        throw std::bad_alloc();
    return picture;
}

struct Kind
{
    std::string_view signature; ///< its files begin with it
    Ref<PixelArray2D> (*decode)(std::string_view bytes);
};

constexpr std::array<Kind, 4> kKinds{
    {{"\x89PNG", decodePng}, {"\xff\xd8\xff", decodeJpeg}, {"#?RADIANCE", decodeHdr}, {"#?RGBE", decodeHdr}}};

} // namespace

const krSysPixelFormat& pictureFormat()
{
    static const PictureFormat kFormat;
    return kFormat;
}

const krSysPixelFormat& lightFormat()
{
    static const LightFormat kFormat;
    return kFormat;
}

bool isLight(const IPixelArray& pixels) { return pixels.format() == &lightFormat(); }

Ref<PixelArray2D> newPicture(unsigned width, unsigned height) { return newArray(pictureFormat(), width, height); }

Ref<PixelArray2D> newLightPicture(unsigned width, unsigned height) { return newArray(lightFormat(), width, height); }

void checkSize(std::size_t width, std::size_t height)
{
    constexpr std::size_t kMostPixels = std::size_t{64} << 20;
    if (width == 0 || height == 0)
        throw PictureError("it has no pixels");
    if (width > kGreatestPictureSide || height > kGreatestPictureSide || width * height > kMostPixels)
        throw PictureError("it has more than 16384 pixels on a side, or more in all than 8192 times 8192");
}

Ref<PixelArray2D> readPicture(const std::string& path)
{
    const std::string bytes = krTools::readText(path, kMostPictureBytes);
    try
    {
        const auto* const kind =
            std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& k) { return bytes.starts_with(k.signature); });
        if (kind == kKinds.end())
            throw PictureError("it is neither PNG nor JPEG nor Radiance HDR");
        return kind->decode(bytes);
    }
    catch (const PictureError& error)
    {
        throw krTools::FileError("cannot read '" + path + "': " + error.what());
    }
}

void fitInto(PixelArray2D& picture, unsigned greatestSide)
{
    const auto fitted = [&](unsigned side) { return std::min(ceilPow2(side), greatestSide); };
    picture.resize(fitted(picture.width()), fitted(picture.height()));
}

void writePng(const std::string& path, const PixelArray2D& picture)
{
    krTools::OutputFiles files;
    try
    {
        files.add(path, encodePng(static_cast<const unsigned char*>(picture.data()), picture.width(), picture.height(),
                                  false));
    }
    catch (const std::runtime_error& error)
    {
        throw krTools::FileError("cannot write '" + path + "': " + error.what());
    }
    files.publish();
}
