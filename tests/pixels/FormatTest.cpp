#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/krBufferFormat.h>
#include <krender/pixels/krColorFormat.h>
#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>
#include <krender/pixels/krSysPixelFormat.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace
{

/// A colour format without storage of its own.
class WithoutStorage : public krColorFormat
{
public:
    WithoutStorage() : krColorFormat(4, 14, 2) {}
};

template <class Component, class Format>
void expectDefaultValue(Format format)
{
    std::array<Component, 4> value = {9, 9, 9, 9};
    format.defaultValue(value.data());
    EXPECT_EQ(value, (std::array<Component, 4>{}));
    const std::array<Component, 4> set = {1, 2, 3, 4};
    format.setDefaultValue(set.data());
    format.defaultValue(value.data());
    EXPECT_EQ(value, set);
}

} // namespace

TEST(BufferFormat, IsRankedByEachRasterAndBySampling)
{
    constexpr auto kLow = krBufferFormat::kFixed8;
    constexpr auto kHigh = krBufferFormat::kFloat32;
    constexpr auto kOne = krBufferFormat::kSingleSample;
    constexpr auto kFour = krBufferFormat::kMultisample4;
    constexpr auto kFlat = IHWTexture::kTexture2D;
    constexpr auto kCube = IHWTexture::kTextureCubeMap;
    const auto expectRank = [](const krBufferFormat& format, const krBufferFormat& other, bool less, bool greater)
    {
        EXPECT_EQ(format.lessCapableThan(other), less);
        EXPECT_EQ(other.lessCapableThan(format), greater);
        EXPECT_EQ(format.betterOrEqualThan(other), !greater) << "it asks whether the other suffices";
        EXPECT_EQ(other.betterOrEqualThan(format), !less);
        EXPECT_TRUE(format == krBufferFormat(format));
        EXPECT_TRUE(format != other);
    };
    const krBufferFormat low(kLow, kLow, kLow, kOne, kFlat);
    expectRank(low, {kHigh, kLow, kLow, kOne, kFlat}, true, false);
    expectRank(low, {kLow, kHigh, kLow, kOne, kFlat}, true, false);
    expectRank(low, {kLow, kLow, kHigh, kOne, kFlat}, true, false);
    expectRank(low, {kLow, kLow, kLow, kFour, kFlat}, true, false);
    expectRank({kLow, kHigh, kLow, kOne, kFlat}, {kHigh, kLow, kLow, kOne, kFlat}, true, true);
    expectRank(low, {kLow, kLow, kLow, kOne, kCube}, false, false);
}

TEST(BufferFormat, KeepsEachFieldInItsPlace)
{
    const krBufferFormat format(krBufferFormat::kFixed8, krBufferFormat::kFixed16, krBufferFormat::kFixed24,
                                krBufferFormat::kMultisample2, IHWTexture::kTexture3D);
    EXPECT_EQ(format.colorRaster(), krBufferFormat::kFixed8);
    EXPECT_EQ(format.secondRaster(), krBufferFormat::kFixed16);
    EXPECT_EQ(format.thirdRaster(), krBufferFormat::kFixed24);
    EXPECT_EQ(format.sampling(), krBufferFormat::kMultisample2);
    EXPECT_EQ(format.textureType(), IHWTexture::kTexture3D);
}

TEST(PixelFormat, StorageIsNullOnlyWithoutPixelsOrBeyondAllMemory)
{
    const krSysPixelFormat plain(4, 14, 2);
    const krColorFormatRGBAFixed8 fixed8;
    const krColorFormatRGBAFloat rgbaFloat;
    constexpr unsigned kMost = 0xFFFFFFFF;
    struct Row
    {
        unsigned w, h, d;
        bool ownStorage, plainStorage;
    };
    const Row rows[] = {{3, 5, 7, true, true},
                        {1500, 1500, 1, true, true}, // large enough for huge pages
                        {0, 1, 1, false, true},
                        {1, 0, 1, false, true},
                        {1, 1, 0, false, true},
                        {kMost, kMost, 0, false, true},
                        {kMost, kMost, 1, false, false},
                        {0x80000000, 0x40000000, 1, false, false}, // 2^63 bytes, and 2^65
                        {0x80010001, 0x7FFF0001, 1, false, false}, // 2^64 + 4 bytes
                        {0x10000, 0x10000, kMost, false, false}};
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.w << " x " << row.h << " x " << row.d);
        void* storage[] = {plain.allocate(row.w, row.h, row.d), fixed8.allocate(row.w, row.h, row.d),
                           rgbaFloat.allocate(row.w, row.h, row.d)};
        EXPECT_EQ(storage[0] != nullptr, row.plainStorage);
        EXPECT_EQ(storage[1] != nullptr, row.ownStorage);
        EXPECT_EQ(storage[2] != nullptr, row.ownStorage);
        // Arrays return plain storage to the deallocate of any format.
        rgbaFloat.deallocate(storage[0]);
        fixed8.deallocate(storage[1]);
        plain.deallocate(storage[2]);
    }
    const WithoutStorage none;
    EXPECT_EQ(none.allocate(1, 1, 1), nullptr);
    none.deallocate(nullptr);
}

TEST(PixelFormat, StorageMayExceed32Bits)
{
    void* sample = std::malloc(std::size_t{1} << 32);
    if (!sample)
        GTEST_SKIP() << "this machine has no 4 GiB to give";
    std::free(sample);
    const krColorFormatRGBAFixed8 format;
    void* storage = format.allocate(0x10000, 0x4000, 1);
    EXPECT_NE(storage, nullptr);
    format.deallocate(storage);
}

TEST(ColorFormat, DefaultValueStartsAt0AndIsKept)
{
    expectDefaultValue<unsigned char>(krColorFormatRGBAFixed8());
    expectDefaultValue<float>(krColorFormatRGBAFloat());
}

TEST(ConvertFromFloat, IsAThresholdAndNotAScale)
{
    const float infinity = std::numeric_limits<float>::infinity();
    struct Row
    {
        float component;
        int byte;
    };
    const std::vector<Row> ordinary = {{0, 0},         {0.49f, 0}, {std::nextafter(0.5f, 0.0f), 0},
                                       {0.5f, 255},    {1, 255},   {1.49f, 255},
                                       {1.5f, 254},    {100, 156}, {-0.5f, 0},
                                       {-1.49f, 0},    {-1.5f, 1}, {-300, 299 & 0xFF},
                                       {8388607.5f, 0}};
    const std::vector<Row> large = {{16777216, 0},        {2147483520.0f, 128}, {2147483648.0f, 0}, {4294967296.f, 0},
                                    {-4294967296.f, 255}, {1e30f, 0},           {-1e30f, 0},        {infinity, 0},
                                    {-infinity, 0},       {std::nanf(""), 0}};
    // 17 pixels are a block of 64 components, computed at once where it has none too large, and 4 more.
    const krColorFormatRGBAFixed8 format;
    for (std::size_t n = 0; n < large.size(); ++n)
        for (const std::size_t position : {n, n + 50, std::size_t{64}})
        {
            std::vector<Row> rows(68);
            std::vector<float> src(68);
            for (std::size_t i = 0; i < 68; ++i)
            {
                rows[i] = i == position ? large[n] : ordinary[i % ordinary.size()];
                src[i] = rows[i].component;
            }
            unsigned char* bytes = format.convertFromFloat(src.data(), 1, 17, 1);
            for (std::size_t i = 0; i < src.size(); ++i)
                EXPECT_EQ(bytes[i], rows[i].byte) << src[i] << " at " << i;
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
