#include <krender/pixels/IHWTexPlacement.h>
#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/PixelArray1D.h>
#include <krender/pixels/PixelArray2D.h>
#include <krender/pixels/PixelArray3D.h>
#include <krender/pixels/PixelArrayCubeMap.h>
#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

/// A format of a chosen pixel type that counts the images that it has handed out and taken back.
template <class Format>
class Counting : public Format
{
public:
    explicit Counting(std::int32_t pixelType) noexcept : Format(pixelType) {}

    [[nodiscard]] void* allocate(unsigned w, unsigned h, unsigned d) const override
    {
        ++allocated;
        return Format::allocate(w, h, d);
    }
    void deallocate(void* pixels) const override
    {
        ++released;
        Format::deallocate(pixels);
    }

    mutable int allocated = 0;
    mutable int released = 0;
};

using CountingFixed8 = Counting<krColorFormatRGBAFixed8>;
using CountingFloat = Counting<krColorFormatRGBAFloat>;

void fill(IPixelArray& array, unsigned pixelSize)
{
    Bytes bytes(std::size_t{pixelSize} * array.width() * array.height() * array.depth());
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    array.copy(bytes.data(), pixelSize);
}

Bytes contents(const PixelArray2D& array)
{
    const auto* bytes = static_cast<const unsigned char*>(array.data());
    return {bytes, bytes + std::size_t{array.pixelSize()} * array.width() * array.height()};
}

void expectShape(const IPixelArray& array, unsigned w, unsigned h, unsigned d)
{
    EXPECT_EQ(array.width(), w);
    EXPECT_EQ(array.height(), h);
    EXPECT_EQ(array.depth(), d);
    EXPECT_EQ(array.data() != nullptr, w != 0);
    EXPECT_EQ(array.ownsData(), w != 0);
}

} // namespace

TEST(Resource, AnswersOfTheBases)
{
    auto* texture = new IHWTexture;
    EXPECT_TRUE(texture->lock(IBaseResource::kReadWrite, false));
    EXPECT_FALSE(texture->isLocked(IBaseResource::kReadWrite));
    EXPECT_EQ(texture->duplicate(true, true), nullptr);
    EXPECT_EQ(texture->duplicateInternal(true), nullptr);
    EXPECT_FALSE(texture->bind() || texture->unbind() || texture->generateMipMaps() || texture->mipmapped());
    EXPECT_EQ(texture->importance(), 0U);
    texture->setImportance(3);
    EXPECT_EQ(texture->importance(), 3U);
    EXPECT_EQ(texture->ref(), 1) << "nobody held it before";
    EXPECT_EQ(texture->unref(), 0);
    EXPECT_TRUE(IHWTexPlacement().defaultColor.equivalent(krColor::Color::kCblack, 0));
}

TEST(PixelArray, EachKindHasItsShapeAndReleasesItsStorage)
{
    const CountingFixed8 format(14);
    {
        PixelArray1D line(format, 5);
        PixelArray2D image(format, 4, 3);
        PixelArray3D volume(format, 4, 3, 2);
        PixelArrayCubeMap cube(format, 16, 16);
        expectShape(line, 5, 1, 1);
        expectShape(image, 4, 3, 1);
        expectShape(volume, 4, 3, 2);
        expectShape(cube, 16, 16, 6);
        for (IPixelArray* array : {static_cast<IPixelArray*>(&line), static_cast<IPixelArray*>(&image),
                                   static_cast<IPixelArray*>(&volume), static_cast<IPixelArray*>(&cube)})
            fill(*array, 4); // under the address sanitizer this is what measures the storage
    }
    EXPECT_EQ(format.allocated, 0) << "arrays take the plain storage";
    EXPECT_EQ(format.released, 4);
}

TEST(PixelArray, SizesOfZeroAndSizesThatOverflowLeaveItEmpty)
{
    const CountingFixed8 format(14);
    {
        expectShape(PixelArray1D(format, 0), 0, 0, 0);
        expectShape(PixelArray2D(format, 0, 3), 0, 0, 0);
        expectShape(PixelArray2D(format, 3, 0), 0, 0, 0);
        expectShape(PixelArray2D(format, 0x10000, 0x10000), 0, 0, 0);
        expectShape(PixelArray2D(format, 0x8000, 0x8000), 0, 0, 0);
        expectShape(PixelArray3D(format, 3, 3, 0), 0, 0, 0);
        expectShape(PixelArray3D(format, 0x1000, 0x1000, 0x1000), 0, 0, 0);
        expectShape(PixelArrayCubeMap(format, 0x10000, 0x3000), 0, 0, 0);
        PixelArray2D none;
        expectShape(none, 0, 0, 0);
        EXPECT_EQ(none.pixelSize(), 0U);
        EXPECT_EQ(none.pixelType(), 0);
        none.resize(3, 3);
        EXPECT_FALSE(none.convertToNormalMap(1));
    }
    EXPECT_EQ(format.released, 0);
}

TEST(PixelArray2D, CopyBetweenLikesLeavesThePixelsAndDisowns)
{
    const CountingFixed8 format(2);
    {
        PixelArray2D from(format, 3, 3);
        PixelArray2D to(format, 3, 3);
        fill(from, 4);
        std::memset(to.data(), 200, 36);
        to.copy(from);
        EXPECT_EQ(contents(to), Bytes(36, 200));
        EXPECT_FALSE(to.ownsData());
        to.convertToNormalMap(1);
        EXPECT_EQ(contents(to), Bytes(36, 200)) << "what it does not own is not converted";
    }
    EXPECT_EQ(format.released, 2) << "released all the same";
}

TEST(PixelArray2D, CopyOfAnotherSizeTakesOnlyEightBytes)
{
    const CountingFixed8 fixed8(2);
    const CountingFloat rgbaFloat(4);
    {
        PixelArray2D from(fixed8, 3, 2);
        fill(from, 4);
        PixelArray2D to(rgbaFloat, 3, 2); // another format counts as another size
        to.copy(from);
        EXPECT_EQ(rgbaFloat.released, 1);
        expectShape(to, 3, 2, 1);
        EXPECT_EQ(to.format(), &fixed8);
        EXPECT_NE(to.data(), from.data());
        EXPECT_EQ(std::memcmp(to.data(), from.data(), 8), 0);

        const PixelArray2D constructed(from);
        expectShape(constructed, 3, 2, 1);
        EXPECT_EQ(std::memcmp(constructed.data(), from.data(), 8), 0);

        PixelArray2D pixel(fixed8, 1, 1); // less than 8 bytes
        fill(pixel, 4);
        EXPECT_EQ(contents(PixelArray2D(pixel)), (Bytes{0, 1, 2, 3}));

        to.copy(PixelArray2D());
        expectShape(to, 0, 0, 0);
        EXPECT_EQ(to.format(), nullptr);
    }
    EXPECT_EQ(fixed8.released, 5) << "one for each array that had pixels";
    EXPECT_EQ(fixed8.allocated, 0);
}

TEST(PixelArray2D, RoutinesGoByThePixelTypeAndNotByTheComponentCode)
{
    const krColorFormatRGBAFixed8 builtIn;
    PixelArray2D array(builtIn, 4, 4);
    fill(array, 4);
    const Bytes before = contents(array);
    EXPECT_EQ(array.pixelType(), 14);
    EXPECT_FALSE(array.convertToNormalMap(1));
    array.resize(2, 2);
    expectShape(array, 4, 4, 1);
    EXPECT_EQ(contents(array), before);

    const krSysPixelFormat stranger(4, 2, 2); // has the type, but none of the routines
    PixelArray2D foreign(stranger, 4, 4);
    fill(foreign, 4);
    EXPECT_FALSE(foreign.convertToNormalMap(1));
    foreign.resize(2, 2);
    EXPECT_EQ(contents(foreign), before);
}

TEST(PixelArray2D, ConvertsAndResizesInEitherFormat)
{
    const CountingFixed8 fixed8(2);
    const CountingFloat rgbaFloat(4);
    {
        PixelArray2D bytes(fixed8, 4, 4);
        fill(bytes, 4);
        bytes.resize(2, 2);
        expectShape(bytes, 2, 2, 1);
        EXPECT_EQ(fixed8.allocated, 1);
        EXPECT_EQ(fixed8.released, 1);
        EXPECT_EQ(contents(bytes)[4], (4 + 8) / 2);
        EXPECT_FALSE(bytes.convertToNormalMap(0));
        EXPECT_EQ(contents(bytes), (Bytes{127, 127, 255, 255, 6, 127, 255, 255, 127, 127, 255, 255, 6, 127, 255, 255}));
        bytes.resize(0, 5);
        expectShape(bytes, 2, 2, 1);

        PixelArray2D floats(rgbaFloat, 4, 4);
        const std::vector<float> levels(64, 0.5f);
        floats.copy(levels.data(), 16);
        EXPECT_FALSE(floats.convertToNormalMap(0));
        EXPECT_EQ(static_cast<const float*>(floats.data())[2], 1.0f);
        floats.resize(8, 1);
        expectShape(floats, 8, 1, 1);
    }
    EXPECT_EQ(fixed8.released, 2);
    EXPECT_EQ(rgbaFloat.released, 2);
}

TEST(PixelArray2D, SingleRowsAndColumnsAreNotConverted)
{
    const CountingFixed8 format(2);
    const unsigned sizes[][2] = {{4, 1}, {1, 4}};
    for (const auto& size : sizes)
    {
        PixelArray2D array(format, size[0], size[1]);
        fill(array, 4);
        const Bytes before = contents(array);
        EXPECT_FALSE(array.convertToNormalMap(1)); // under the address sanitizer: nothing ahead of them is read
        EXPECT_EQ(contents(array), before);
    }
}
