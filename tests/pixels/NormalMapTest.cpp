#include "PlainNormalMap.h"

#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
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
    EXPECT_EQ(fast, exact);
}

} // namespace

TEST(NormalMap, SmallByteImages)
{
    const auto converted = [](Bytes image, std::size_t ahead, unsigned w, unsigned h)
    {
        EXPECT_FALSE(krColorFormatRGBAFixed8().convertToNormalMap(image.data() + 4 * ahead, w, h, 1.0f));
        return image;
    };
    EXPECT_EQ(converted({9, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0}, 0, 3, 2),
              (Bytes{127, 127, 255, 255, 127, 127, 255, 255, 9, 127, 255, 255, //
                     127, 127, 255, 255, 127, 127, 255, 255, 9, 127, 255, 255}))
        << "flat";
    EXPECT_EQ(converted({255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0, 2, 2),
              (Bytes{201, 201, 201, 255, 0, 201, 201, 255, 201, 201, 201, 255, 0, 201, 201, 255}))
        << "down to the right and below: (1 / sqrt(3) + 1) * 127.5 is 201.1";
    EXPECT_EQ(converted({0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0, 2, 2),
              (Bytes{37, 127, 217, 255, 255, 127, 217, 255, 37, 127, 217, 255, 255, 127, 217, 255}))
        << "up to the right: (1 / sqrt(2) + 1) * 127.5 is 217.7";
    EXPECT_EQ(converted({1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0}, 2, 2, 1),
              (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8}))
        << "a single row takes the pixels ahead of it";
    EXPECT_EQ(converted({1, 2, 3, 4, 10, 0, 0, 0, 20, 0, 0, 0, 30, 0, 0, 0}, 1, 1, 3),
              (Bytes{1, 2, 3, 4, 10, 2, 3, 255, 20, 2, 3, 255, 20, 2, 3, 255}))
        << "a single column takes from the pixel before";
    EXPECT_EQ(converted({9, 9, 9, 9}, 0, 0, 2), (Bytes{9, 9, 9, 9}));
    EXPECT_EQ(converted({9, 9, 9, 9}, 0, 2, 0), (Bytes{9, 9, 9, 9}));
    EXPECT_FALSE(krColorFormatRGBAFixed8().convertToNormalMap(nullptr, 4, 4, 1.0f));
}

TEST(NormalMap, FloatFormMarksTheNextRowsFirstHeight)
{
    // The first height of the second row is 0, but reads as 1 by the time that the row is converted: with its right and
    // lower neighbours at 1 it comes out flat. The row above still saw the 0.
    Floats image(24, 1.0f);
    image[8] = 0.0f;
    krColorFormatRGBAFloat().convertToNormalMap(image.data(), 2, 3, 1.0f);
    const float up = (1.0f / std::sqrt(2.0f) + 1.0f) * 0.5f;
    EXPECT_EQ(image, (Floats{0.5f, up,   up, 1, 1,    up,   up, 1, 0.5f, 0.5f, 1, 1, //
                             1,    0.5f, 1,  1, 0.5f, 0.5f, 1,  1, 1,    0.5f, 1, 1}));
}

TEST(NormalMap, SlopesTooSteepForFloat)
{
    const auto expectNormal = [](float scale, unsigned char x, unsigned char y, unsigned char z)
    {
        // The first pixel is computed with three others, the fifth on its own; both rise to the right.
        Bytes image(48, 0);
        image[4] = image[20] = 255;
        krColorFormatRGBAFixed8().convertToNormalMap(image.data(), 6, 2, scale);
        EXPECT_EQ(Bytes(image.begin(), image.begin() + 4), (Bytes{x, y, z, 255})) << scale;
        EXPECT_EQ(Bytes(image.begin() + 16, image.begin() + 20), (Bytes{x, y, z, 255})) << scale;
    };
    expectNormal(1e10f, 0, 127, 127);
    expectNormal(-1e10f, 255, 127, 127);
    expectNormal(1e20f, 127, 127, 127); // its square is infinite, so the normal's length is 0
    expectNormal(std::numeric_limits<float>::max(), 127, 127, 127);
    expectNormal(std::numeric_limits<float>::infinity(), 0, 0, 0); // NaN
}

TEST(NormalMap, SameBitsAsThePlainForm)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<unsigned> size(1, 40);
    std::uniform_real_distribution<float> height(-2.0f, 2.0f);
    const float scales[] = {0.0f, 1.0f, -3.0f, 17.3f, 1e4f, 1e-4f, 1e25f};
    for (int round = 0; round < 140; ++round)
    {
        const unsigned w = size(random);
        const unsigned h = size(random);
        Bytes bytes(std::size_t{4} * w * (h + 1));
        Floats floats(bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i)
        {
            bytes[i] = static_cast<unsigned char>(random());
            floats[i] = height(random);
        }
        const float scale = scales[static_cast<std::size_t>(round) % std::size(scales)];
        expectSameAsPlain(krColorFormatRGBAFixed8(), bytes, w, h, scale);
        expectSameAsPlain(krColorFormatRGBAFloat(), floats, w, h, scale);
    }
}
