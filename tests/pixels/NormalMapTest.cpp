#include "PlainForms.h"

#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;
using Floats = std::vector<float>;

template <class Format, class Component>
void expectSameAsPlain(const Format& format, const std::vector<Component>& image, unsigned w, unsigned h, float scale)
{
    SCOPED_TRACE(testing::Message() << w << " x " << h << ", scale " << scale);
    const std::size_t ahead = std::size_t{4} * w; // room for what single rows and columns read
    std::vector<Component> fast = image;
    std::vector<Component> exact = image;
    EXPECT_FALSE(format.convertToNormalMap(fast.data() + ahead, w, h, scale));
    plain::convertToNormalMap(exact.data() + ahead, w, h, scale);
    EXPECT_EQ(std::memcmp(fast.data(), exact.data(), fast.size() * sizeof(Component)), 0);
}

} // namespace

TEST(NormalMap, FlatBytesPointUpAndKeepTheLastColumn)
{
    Bytes image(36, 77);
    krColorFormatRGBAFixed8().convertToNormalMap(image.data(), 3, 3, 5.0f);
    const Bytes row = {127, 127, 255, 255, 127, 127, 255, 255, 77, 127, 255, 255};
    for (std::size_t y = 0; y < 3; ++y)
        EXPECT_EQ(Bytes(image.begin() + static_cast<long>(12 * y), image.begin() + static_cast<long>(12 * y + 12)),
                  row);
}

TEST(NormalMap, SlopesLeanAwayFromTheHigherSide)
{
    // Heights 255 0 over 0 0: one unit down to the right and one unit down below at scale 1.
    Bytes image = {255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    krColorFormatRGBAFixed8().convertToNormalMap(image.data(), 2, 2, 1.0f);
    const Bytes row = {201, 201, 201, 255, 0, 201, 201, 255}; // (1 / sqrt(3) + 1) * 127.5 is 201.1
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 8), row);
    EXPECT_EQ(Bytes(image.begin() + 8, image.end()), row);
}

TEST(NormalMap, FloatFormMarksTheNextRowsFirstHeight)
{
    // The first height of the second row is 0, but reads as 1 by the time that the row is converted: with its right and
    // lower neighbours at 1 it comes out flat.
    Floats image(24, 1.0f);
    image[8] = 0.0f;
    krColorFormatRGBAFloat().convertToNormalMap(image.data(), 2, 3, 1.0f);
    const float slanted = (1.0f / std::sqrt(2.0f) + 1.0f) * 0.5f;
    EXPECT_FLOAT_EQ(image[1], slanted) << "the row above still saw the 0";
    EXPECT_EQ(image[8], 0.5f);
    EXPECT_EQ(image[9], 0.5f);
    EXPECT_EQ(image[10], 1.0f);
}

TEST(NormalMap, SingleRowTakesThePixelsAheadOfIt)
{
    Bytes image = {1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0};
    krColorFormatRGBAFixed8().convertToNormalMap(image.data() + 8, 2, 1, 1.0f);
    EXPECT_EQ(Bytes(image.begin() + 8, image.end()), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(NormalMap, SingleColumnTakesFromTheRowBefore)
{
    Bytes image = {1, 2, 3, 4, 10, 0, 0, 0, 20, 0, 0, 0, 30, 0, 0, 0};
    krColorFormatRGBAFixed8().convertToNormalMap(image.data() + 4, 1, 3, 1.0f);
    EXPECT_EQ(image, (Bytes{1, 2, 3, 4, 10, 2, 3, 255, 20, 2, 3, 255, 20, 2, 3, 255}));
}

TEST(NormalMap, NothingToConvert)
{
    Bytes image(8, 9);
    EXPECT_FALSE(krColorFormatRGBAFixed8().convertToNormalMap(nullptr, 4, 4, 1.0f));
    EXPECT_FALSE(krColorFormatRGBAFixed8().convertToNormalMap(image.data(), 0, 2, 1.0f));
    EXPECT_FALSE(krColorFormatRGBAFixed8().convertToNormalMap(image.data(), 2, 0, 1.0f));
    EXPECT_EQ(image, Bytes(8, 9));
}

TEST(NormalMap, SameBitsAsThePlainForm)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<unsigned> size(1, 40);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_real_distribution<float> height(-2.0f, 2.0f);
    const float scales[] = {0.0f, 1.0f, -3.0f, 17.3f, 1e4f, 1e-4f, 1e25f};
    for (int round = 0; round < 200; ++round)
    {
        const unsigned w = size(random);
        const unsigned h = size(random);
        Bytes bytes(std::size_t{4} * w * (h + 1));
        for (auto& b : bytes)
            b = static_cast<unsigned char>(byte(random));
        Floats floats(bytes.size());
        for (auto& f : floats)
            f = height(random);
        const float scale = scales[static_cast<std::size_t>(round) % std::size(scales)];
        expectSameAsPlain(krColorFormatRGBAFixed8(), bytes, w, h, scale);
        expectSameAsPlain(krColorFormatRGBAFloat(), floats, w, h, scale);
    }
}
