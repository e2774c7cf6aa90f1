#include "CubeMap.h"

#include "Directions.h"
#include "Parallel.h"
#include "Picture.h"
#include "PictureReaders.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <numbers>
#include <string>
#include <vector>

namespace
{

constexpr unsigned kLeastSide = 4;
constexpr unsigned kMostSide = 1024;
constexpr std::array kFaceNames{"+x", "-x", "+y", "-y", "+z", "-z"};
static_assert(kFaceNames.size() == kFaces);

using Texel = std::array<float, 4>;

/// What the bytes of 8-bit pixels mean.
class Codes
{
public:
    explicit Codes(bool decodes)
    {
        for (std::size_t i = 0; i < fMeanings.size(); ++i)
        {
            const float code = static_cast<float>(i) / 255;
            const float light = code <= 0.04045f ? code / 12.92f : std::pow((code + 0.055f) / 1.055f, 2.4f);
            fMeanings[i] = decodes ? light : code;
            fPlain[i] = code;
        }
    }

    [[nodiscard]] Texel operator()(const std::uint8_t* pixel) const
    {
        return {fMeanings[pixel[0]], fMeanings[pixel[1]], fMeanings[pixel[2]], fPlain[pixel[3]]};
    }

private:
    std::array<float, 256> fMeanings{};
    std::array<float, 256> fPlain{}; ///< of alpha
};

/// Rows of floats.
struct Plane
{
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<Texel> texels = {};

    [[nodiscard]] const Texel& at(std::size_t x, std::size_t y) const { return texels[y * width + x]; }
};

/// The mean pixels of the cells of a grid on a picture; a cell may be a pixel.
template <class PixelAt>
Plane reduced(std::size_t width, std::size_t height, std::size_t mostSide, const PixelAt& pixelAt)
{
    Plane plane{std::min(width, mostSide), std::min(height, mostSide)};
    plane.texels.resize(plane.width * plane.height);
    inParallel(plane.height,
               [&](std::size_t row)
               {
                   const std::size_t top = (row + 1) * height / plane.height;
                   for (std::size_t column = 0; column < plane.width; ++column)
                   {
                       const std::size_t right = (column + 1) * width / plane.width;
                       Texel sum{};
                       float count = 0;
                       for (std::size_t y = row * height / plane.height; y < top; ++y)
                           for (std::size_t x = column * width / plane.width; x < right; ++x, ++count)
                           {
                               const Texel pixel = pixelAt(x, y);
                               for (std::size_t i = 0; i < sum.size(); ++i)
                                   sum[i] += pixel[i];
                           }
                       for (float& component : sum)
                           component /= count;
                       plane.texels[row * plane.width + column] = sum;
                   }
               });
    return plane;
}

/// A slice of an array as floats, of a limited size.
Plane planeOf(const IPixelArray& pixels, std::size_t slice, std::size_t mostSide, bool decodes)
{
    const std::size_t width = pixels.width();
    const std::size_t first = slice * width * pixels.height();
    if (isLight(pixels))
    {
        const auto* const texels = static_cast<const Texel*>(pixels.data()) + first;
        return reduced(width, pixels.height(), mostSide,
                       [=](std::size_t x, std::size_t y) { return texels[y * width + x]; });
    }
    const auto* const bytes = static_cast<const std::uint8_t*>(pixels.data()) + 4 * first;
    const Codes codes(decodes);
    return reduced(width, pixels.height(), mostSide,
                   [=, &codes](std::size_t x, std::size_t y) { return codes(bytes + 4 * (y * width + x)); });
}

/// Pixels that a stretch of a row or column covers, the outermost two in part.
class Stretch
{
public:
    /// @param middle, length  in pixels; of a length of 1 it lies between the middles of two
    Stretch(float middle, float length)
        : fFrom(middle - length / 2),
          fTo(middle + length / 2),
          fFirst(std::floor(fFrom)),
          fCount(static_cast<int>(std::floor(fTo) - fFirst) + 1)
    {
    }

    [[nodiscard]] int first() const noexcept { return static_cast<int>(fFirst); }
    [[nodiscard]] int count() const noexcept { return fCount; }
    /// How much of a pixel is covered.
    [[nodiscard]] float share(int index) const
    {
        const float begin = fFirst + static_cast<float>(index);
        return std::max(0.0f, std::min(fTo, begin + 1) - std::max(fFrom, begin));
    }

private:
    float fFrom;
    float fTo;
    float fFirst;
    int fCount;
};

/// The mean of what two stretches cover.
/// @param pixelAt  the pixel of a column and a row, which may lie outside
template <class PixelAt>
Texel meanOf(const Stretch& across, const Stretch& up, const PixelAt& pixelAt)
{
    Texel sum{};
    float shares = 0;
    for (int y = 0; y < up.count(); ++y)
        for (int x = 0; x < across.count(); ++x)
        {
            const float share = across.share(x) * up.share(y);
            const Texel& pixel = pixelAt(across.first() + x, up.first() + y);
            shares += share;
            for (std::size_t i = 0; i < sum.size(); ++i)
                sum[i] += share * pixel[i];
        }
    for (float& component : sum)
        component /= shares;
    return sum;
}

/// Fills a cube map.
/// @param lightFrom  the light of a direction of any length, as the picture has it without a setting
template <class LightFrom>
Ref<PixelArrayCubeMap> cubeAround(unsigned side, const Setting& setting, const LightFrom& lightFrom)
{
    Ref<PixelArrayCubeMap> cube = newCube(lightFormat(), side);
    auto* const texels = static_cast<Texel*>(cube->data());
    const float cosine = std::cos(setting.turn);
    const float sine = std::sin(setting.turn);
    inParallel(std::size_t{kFaces} * side,
               [&](std::size_t row)
               {
                   const auto face = static_cast<unsigned>(row / side);
                   const float t = pixelCentre<float>(row % side, side);
                   for (std::size_t column = 0; column < side; ++column)
                   {
                       const auto [x, y, z] = faceDirection(face, pixelCentre<float>(column, side), t);
                       Texel texel = lightFrom(Direction<float>{x * cosine - z * sine, y, x * sine + z * cosine});
                       for (std::size_t i = 0; i < 3; ++i)
                           texel[i] *= setting.intensity;
                       texels[row * side + column] = texel;
                   }
               });
    return cube;
}

} // namespace

Ref<PixelArrayCubeMap> newCube(const krSysPixelFormat& format, unsigned side)
{
    Ref<PixelArrayCubeMap> cube(new PixelArrayCubeMap(format, side, side));
    if (!cube->data())
        throw std::bad_alloc();
    return cube;
}

Ref<PixelArrayCubeMap> cubeOfFaces(const std::function<Ref<PixelArray2D>(std::size_t face)>& read,
                                   unsigned greatestSide)
{
    constexpr unsigned kMostFaceSide = 2048;
    Ref<PixelArrayCubeMap> cube;
    unsigned firstSide = 0;
    std::byte* row = nullptr;
    for (std::size_t i = 0; i < kFaces; ++i)
    {
        const auto fail = [&](const std::string& text)
        { throw PictureError(std::string("the picture of ") + kFaceNames[i] + " " + text); };
        const Ref<PixelArray2D> face = read(i);
        const std::string size = std::to_string(face->width()) + " by " + std::to_string(face->height()) + " pixels";
        if (face->width() != face->height())
            fail("is not square but has " + size);
        if (i == 0)
            firstSide = face->width();
        if (face->width() != firstSide)
            fail("has " + size + ", and that of +x has " + std::to_string(firstSide) + " on each side");
        if (cube && face->format() != cube->format())
            fail(std::string(isLight(*face) ? "is HDR" : "is not HDR") + ", unlike that of +x");
        fitInto(*face, std::min(greatestSide, kMostFaceSide));
        if (!cube)
        {
            cube = newCube(*face->format(), face->width());
            row = static_cast<std::byte*>(cube->data());
        }
        const std::size_t rowBytes = std::size_t{face->pixelSize()} * face->width();
        for (unsigned y = face->height(); y-- > 0; row += rowBytes)
            std::memcpy(row, static_cast<const std::byte*>(face->data()) + rowBytes * y, rowBytes);
    }
    return cube;
}

Ref<PixelArrayCubeMap> cubeOfLatLong(const PixelArray2D& picture, const Setting& setting)
{
    const Plane plane = planeOf(picture, 0, std::size_t{4} * kMostSide, setting.decodes);
    const auto width = static_cast<float>(plane.width);
    const auto height = static_cast<float>(plane.height);
    const auto columns = static_cast<int>(plane.width);
    const auto rows = static_cast<int>(plane.height);
    // Beyond a pole the picture goes on at the opposite longitude.
    const auto pixelAt = [&](int column, int row) -> const Texel&
    {
        const bool isBeyond = row < 0 || row >= rows;
        const int inside = row < 0 ? -1 - row : row >= rows ? 2 * rows - 1 - row : row;
        const int around = (column + (isBeyond ? columns / 2 : 0)) % columns;
        return plane.at(static_cast<std::size_t>(around < 0 ? around + columns : around),
                        static_cast<std::size_t>(std::clamp(inside, 0, rows - 1)));
    };
    const unsigned side =
        std::clamp(std::bit_ceil(static_cast<unsigned>((plane.width + 3) / 4)), kLeastSide, kMostSide);
    return cubeAround(
        side, setting,
        [&](const Direction<float>& d)
        {
            constexpr float kPi = std::numbers::pi_v<float>;
            const auto [x, y, z] = d;
            const float longitude = std::atan2(x, -z);
            const float radius = std::sqrt(x * x + z * z);
            const float latitude = std::atan2(y, radius);
            // A texel takes all that it covers, or small lights would be lost: the more pixels of a row
            // the closer it is to a pole.
            const float length = std::sqrt(radius * radius + y * y);
            // Above and below the texels do not lie along the picture's rows: what they cover is wider.
            const float turned = std::abs(y) == 1 ? (std::abs(x) + std::abs(z)) / radius : 1;
            const float angle = turned * 2 / (static_cast<float>(side) * length * std::sqrt(length));
            const float across = angle * width / (2 * kPi) * length;
            const Stretch columnsOf((0.5f + longitude / (2 * kPi)) * width,
                                    across < radius * width ? std::max(1.0f, across / radius) : width);
            return meanOf(columnsOf, {(0.5f + latitude / kPi) * height, std::max(1.0f, angle * height / kPi)}, pixelAt);
        });
}

Ref<PixelArrayCubeMap> cubeOfCube(const PixelArrayCubeMap& cube, const Setting& setting)
{
    std::array<Plane, kFaces> faces;
    for (std::size_t i = 0; i < kFaces; ++i)
        faces[i] = planeOf(cube, i, kMostSide, setting.decodes);
    const auto side = static_cast<unsigned>(faces[0].width);
    const auto half = static_cast<float>(side) / 2;
    const auto within = [side](int at)
    { return static_cast<std::size_t>(std::clamp(at, 0, static_cast<int>(side) - 1)); };
    return cubeAround(side, setting,
                      [&](const Direction<float>& d)
                      {
                          const auto [face, s, t] = facePoint(d);
                          const Plane& plane = faces[face];
                          return meanOf({(s + 1) * half, 1}, {(t + 1) * half, 1},
                                        [&](int column, int row) -> const Texel&
                                        { return plane.at(within(column), within(row)); });
                      });
}
