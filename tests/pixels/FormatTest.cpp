#include <krender/pixels/krBufferFormat.h>
#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace
{

constexpr auto kLow = krBufferFormat::kFixed8;
constexpr auto kHigh = krBufferFormat::kFloat32;

krBufferFormat makeFormat(krBufferFormat::RasterFormat color, krBufferFormat::RasterFormat second,
                          krBufferFormat::RasterFormat third, krBufferFormat::SamplingType sampling)
{
    return {color, second, third, sampling, IHWTexture::kTexture2D};
}

/// What a format without memory of its own gives.
class Memoryless : public krColorFormat
{
public:
    Memoryless() : krColorFormat(4, 14, 2) {}
};

} // namespace

TEST(BufferFormat, AnyLesserFieldMakesItLessCapable)
{
    const krBufferFormat low = makeFormat(kLow, kLow, kLow, krBufferFormat::kSingleSample);
    const krBufferFormat raised[] = {makeFormat(kHigh, kLow, kLow, krBufferFormat::kSingleSample),
                                     makeFormat(kLow, kHigh, kLow, krBufferFormat::kSingleSample),
                                     makeFormat(kLow, kLow, kHigh, krBufferFormat::kSingleSample),
                                     makeFormat(kLow, kLow, kLow, krBufferFormat::kMultisample4)};
    EXPECT_FALSE(low.lessCapableThan(low));
    for (const krBufferFormat& format : raised)
    {
        EXPECT_TRUE(low.lessCapableThan(format));
        EXPECT_FALSE(format.lessCapableThan(low));
        EXPECT_TRUE(format != low);
    }
    EXPECT_TRUE(raised[0].lessCapableThan(raised[1])) << "each lacks something";
    EXPECT_TRUE(raised[1].lessCapableThan(raised[0]));
}

TEST(BufferFormat, BetterOrEqualAsksWhetherTheOtherSuffices)
{
    const krBufferFormat low = makeFormat(kLow, kLow, kLow, krBufferFormat::kSingleSample);
    const krBufferFormat high = makeFormat(kHigh, kLow, kLow, krBufferFormat::kSingleSample);
    EXPECT_TRUE(low.betterOrEqualThan(high));
    EXPECT_FALSE(high.betterOrEqualThan(low));
    EXPECT_TRUE(low.betterOrEqualThan(low));
}

TEST(BufferFormat, TextureTypeDistinguishesButDoesNotRank)
{
    const krBufferFormat flat(kLow, kHigh, kLow, krBufferFormat::kSingleSample, IHWTexture::kTexture2D);
    const krBufferFormat cube(kLow, kHigh, kLow, krBufferFormat::kSingleSample, IHWTexture::kTextureCubeMap);
    EXPECT_FALSE(flat == cube);
    EXPECT_FALSE(flat.lessCapableThan(cube));
    EXPECT_FALSE(cube.lessCapableThan(flat));
    EXPECT_TRUE(flat == krBufferFormat(flat));
}

TEST(ColorFormat, StorageFailsClearly)
{
    const krColorFormatRGBAFixed8 fixed8;
    const krColorFormatRGBAFloat rgbaFloat;
    const unsigned sizes[][3] = {{0, 1, 1},           {1, 0, 1},
                                 {1, 1, 0},           {0x10000, 0x4000, 1},
                                 {0x8000, 0x8000, 2}, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}};
    for (const auto& size : sizes)
    {
        EXPECT_EQ(fixed8.allocate(size[0], size[1], size[2]), nullptr);
        EXPECT_EQ(rgbaFloat.allocate(size[0], size[1], size[2]), nullptr);
    }
    const krSysPixelFormat plain(8, 14, 2);
    EXPECT_EQ(plain.allocate(0x8000, 0x4000, 1), nullptr) << "4 GB would wrap to nothing";
    EXPECT_EQ(Memoryless().allocate(1, 1, 1), nullptr);
    Memoryless().deallocate(nullptr);
}

TEST(ColorFormat, PlainStorageAndOwnStorageEndAlike)
{
    const krColorFormatRGBAFixed8 fixed8;
    const krSysPixelFormat& plain = fixed8;
    for (const unsigned size : {1U, 100U, 1500U}) // the largest takes the way of huge pages
    {
        auto* own = static_cast<unsigned char*>(fixed8.allocate(size, size, 1));
        own[4 * size * size - 1] = 1;
        plain.deallocate(own);
        plain.deallocate(plain.allocate(size, size, 1));
    }
}

TEST(ColorFormat, DefaultValueIsKept)
{
    krColorFormatRGBAFloat format;
    float value[4] = {1, 1, 1, 1};
    format.defaultValue(value);
    EXPECT_EQ(value[0] + value[1] + value[2] + value[3], 0.0f);
    const float orange[4] = {1, 0.5f, 0, 0.75f};
    format.setDefaultValue(orange);
    format.defaultValue(value);
    EXPECT_TRUE(std::equal(orange, orange + 4, value));
}

TEST(ConvertFromFloat, IsAThresholdAndNotAScale)
{
    const float infinity = std::numeric_limits<float>::infinity();
    struct Row
    {
        float component;
        int byte;
    };
    const Row rows[] = {{0, 0},
                        {0.49f, 0},
                        {std::nextafter(0.5f, 0.0f), 0},
                        {0.5f, 255},
                        {1, 255},
                        {1.49f, 255},
                        {1.5f, 254},
                        {100, 156},
                        {-1, 0},
                        {-1.49f, 0},
                        {-1.5f, 1},
                        {-300, (299) & 0xFF},
                        {8388607.5f, 0},
                        {16777216, 0},
                        {255.5f, 0},
                        {2147483520.0f, 128},
                        {4294967296.f, 0},
                        {-1e30f, 0},
                        {-4294967296.f, 255},
                        {infinity, 0},
                        {std::nanf(""), 0}};
    const krColorFormatRGBAFixed8 format;
    for (unsigned width = 1; width < 12; ++width) // whatever way each position is computed
        for (std::size_t shift = 0; shift < std::size(rows); ++shift)
        {
            std::vector<float> src(std::size_t{4} * width);
            for (std::size_t i = 0; i < src.size(); ++i)
                src[i] = rows[(i + shift) % std::size(rows)].component;
            unsigned char* bytes = format.convertFromFloat(src.data(), 1, width, 1);
            for (std::size_t i = 0; i < src.size(); ++i)
                EXPECT_EQ(bytes[i], rows[(i + shift) % std::size(rows)].byte) << src[i];
            format.deallocate(bytes);
        }
}

TEST(ConvertFromFixed8, TakesTheMiddleOfEachStep)
{
    std::vector<unsigned char> src(std::size_t{4} * 3 * 5 * 7);
    for (std::size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<unsigned char>(i);
    const krColorFormatRGBAFloat format;
    float* pixels = format.convertFromFixed8(src.data(), 3, 5, 7);
    EXPECT_NEAR(pixels[0], 0.00196, 0.00001);
    EXPECT_NEAR(pixels[255], 1.00196, 0.00001);
    for (std::size_t i = 0; i < src.size(); ++i)
        EXPECT_EQ(pixels[i], static_cast<float>((src[i] + 0.5) / 255)) << i;
    format.deallocate(pixels);
}

TEST(Convert, AnswersNullWithoutAnImage)
{
    const krColorFormatRGBAFixed8 fixed8;
    const krColorFormatRGBAFloat rgbaFloat;
    const float component = 0;
    const unsigned char byte = 0;
    EXPECT_EQ(fixed8.convertFromFloat(nullptr, 1, 1, 1), nullptr);
    EXPECT_EQ(fixed8.convertFromFloat(&component, 0, 0, 0), nullptr);
    EXPECT_EQ(fixed8.convertFromFloat(&component, 1, 0, 1), nullptr);
    EXPECT_EQ(rgbaFloat.convertFromFixed8(nullptr, 1, 1, 1), nullptr);
    EXPECT_EQ(rgbaFloat.convertFromFixed8(&byte, 1, 1, 0), nullptr);
}
