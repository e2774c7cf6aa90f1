#include "PlainForms.h"

#include "krender/pixels/private/Resize.h"
#include "krender/pixels/private/ResizeFloatRows.h"
#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;
using Floats = std::vector<float>;
using plain::Sizes;

template <class Component>
std::vector<Component> resized(const std::vector<Component>& src, Sizes s)
{
    using Format =
        std::conditional_t<std::is_same_v<Component, float>, krColorFormatRGBAFloat, krColorFormatRGBAFixed8>;
    const Format format;
    Component* pixels = format.resize(src.data(), s.srcW, s.srcH, s.dstW, s.dstH);
    if (pixels == nullptr)
        return {};
    std::vector<Component> dst(pixels, pixels + std::size_t{4} * s.dstW * s.dstH);
    format.deallocate(pixels);
    return dst;
}

bool sameBits(unsigned char a, unsigned char b) { return a == b; }

bool sameBits(float a, float b)
{
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) || (std::isnan(a) && std::isnan(b));
}

template <class Component>
void expectSameAsPlain(const std::vector<Component>& src, Sizes s)
{
    SCOPED_TRACE(testing::Message() << s.srcW << " x " << s.srcH << " to " << s.dstW << " x " << s.dstH);
    auto fast = resized(src, s);
    const auto exact = plain::resize(src.data(), s);
    ASSERT_EQ(fast.size(), exact.size());
    for (std::size_t i = 0; i < fast.size(); ++i)
        ASSERT_PRED2([](auto a, auto b) { return sameBits(a, b); }, fast[i], exact[i]) << "component " << i;
    if constexpr (std::is_same_v<Component, float>)
        for (const bool wide : {false, true})
        {
            if (wide && !krPixels::hasWideRegisters())
                continue;
            krPixels::resize(src.data(), s.srcW, s.srcH, fast.data(), s.dstW, s.dstH, wide);
            for (std::size_t i = 0; i < fast.size(); ++i)
                ASSERT_PRED2([](float a, float b) { return sameBits(a, b); }, fast[i], exact[i])
                    << "component " << i << (wide ? " in wide registers" : " in narrow registers");
        }
}

/// Images of different character, byte and float.
class Images
{
public:
    explicit Images(unsigned seed) : fRandom(seed) {}

    Bytes bytes(Sizes s, int kind)
    {
        Bytes image(std::size_t{4} * s.srcW * s.srcH);
        for (auto& b : image)
            b = kind == 0       ? static_cast<unsigned char>(fRandom()) // anything
                : kind == 1     ? 200                                   // flat
                : fRandom() % 2 ? 255
                                : 0; // the extremes
        return image;
    }

    Floats floats(Sizes s, int kind)
    {
        std::uniform_real_distribution<float> unit(0.0f, 1.0f);
        Floats image(std::size_t{4} * s.srcW * s.srcH);
        for (auto& f : image)
            f = kind == 0   ? unit(fRandom)
                : kind == 1 ? 0.3f
                            : std::ldexp(unit(fRandom), static_cast<int>(fRandom() % 80) - 70);
        return image;
    }

    unsigned upTo(unsigned limit) { return static_cast<unsigned>(fRandom() % limit) + 1; }

private:
    std::mt19937 fRandom;
};

} // namespace

TEST(Resize, NoImageNoSizeAndNoChangeAnswerNull)
{
    const Bytes image(64);
    const krColorFormatRGBAFixed8 format;
    EXPECT_EQ(format.resize(nullptr, 4, 4, 2, 2), nullptr);
    for (const Sizes s :
         {Sizes{4, 4, 4, 4}, {0, 4, 2, 2}, {4, 0, 2, 2}, {4, 4, 0, 2}, {4, 4, 2, 0}, {4, 4, 65536, 65536}})
        EXPECT_EQ(format.resize(image.data(), s.srcW, s.srcH, s.dstW, s.dstH), nullptr);
}

TEST(Resize, FootprintIsCentredOnTheCorner)
{
    // 4 x 4 to 2 x 2: the footprint of the first pixel reaches from -1 to 1, that of the second from 1 to 3.
    Bytes image;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            for (int k = 0; k < 4; ++k)
                image.push_back(static_cast<unsigned char>(60 * y + 10 * x + k));
    const Bytes dst = resized(image, {4, 4, 2, 2});
    EXPECT_EQ(Bytes(dst.begin(), dst.begin() + 8), (Bytes{0, 1, 2, 3, 15, 16, 17, 18}));
    EXPECT_EQ(dst[12], (60 + 120) / 2 + (10 + 20) / 2);
}

TEST(Resize, FloatsAreNudgedAndClamped)
{
    const Floats dst = resized(Floats{0.25f, -3.0f, 1.0f, 7.0f}, {1, 1, 2, 1});
    EXPECT_EQ(dst, (Floats{static_cast<float>(0.25 + 0.00001), 0, 1, 1, static_cast<float>(0.25 + 0.00001), 0, 1, 1}));
}

TEST(Resize, SameBitsAsThePlainFormOverRandomSizes)
{
    Images images(1);
    for (int round = 0; round < 300; ++round)
    {
        const unsigned limit = round % 2 ? 12 : 60;
        const Sizes s{images.upTo(limit), images.upTo(limit), images.upTo(limit), images.upTo(limit)};
        if (s.srcW == s.dstW && s.srcH == s.dstH)
            continue;
        expectSameAsPlain(images.bytes(s, round % 3), s);
        expectSameAsPlain(images.floats(s, round % 3), s);
    }
}

TEST(Resize, SameBitsAsThePlainFormAtTheExtremes)
{
    const Sizes sizes[] = {
        {1, 1, 9, 7},     {1, 30, 5, 3},       {30, 1, 3, 5},    {3, 2, 700, 1},      {2, 3, 1, 700},
        {2, 2, 211, 97},  {257, 129, 31, 200}, {300, 301, 1, 2}, {512, 256, 128, 64}, {100, 100, 33, 77},
        {1, 70001, 1, 3}, {70001, 1, 3, 1},    {600, 3, 2, 1},   {64, 64, 127, 65},   {5, 2, 5, 9},
        {40, 8, 20, 8},   {1000, 2, 999, 1},
    };
    Images images(2);
    for (const Sizes& s : sizes)
        for (int kind = 0; kind < 3; ++kind)
        {
            expectSameAsPlain(images.bytes(s, kind), s);
            expectSameAsPlain(images.floats(s, kind), s);
        }
}

TEST(Resize, ByteAveragesAtTheTruncationEdge)
{
    // The second pixel averages 400 x 500 pixels. Lowering the sum by 2 puts the average exactly 0.00001 below a level,
    // by 1 or 3 to either side of that.
    const Sizes s{800, 1000, 2, 2};
    for (int missing = 0; missing < 4; ++missing)
    {
        Bytes image(std::size_t{4} * s.srcW * s.srcH, 100);
        for (int i = 0; i < missing; ++i)
            --image[4 * ((400 + static_cast<std::size_t>(i)) * s.srcW + 300)];
        expectSameAsPlain(image, s);
    }
}

TEST(Resize, FloatAveragesOnRoundingMidpoints)
{
    // Every 6 x 1 block averages, with the nudge, to a midpoint between two floats, as nearly as double precision can
    // tell: each value takes what the larger ones before it left over.
    std::mt19937 random(3);
    std::uniform_real_distribution<float> unit(0.25f, 0.9f);
    const Sizes s{6 * 40, 1, 40, 1};
    for (int round = 0; round < 20; ++round)
    {
        Floats image(std::size_t{4} * s.srcW, 0.0f);
        for (std::size_t i = 1; i < s.dstW; ++i)
            for (std::size_t k = 0; k < 4; ++k)
            {
                const float level = unit(random);
                const double midpoint = (static_cast<double>(level) + std::nextafter(level, 1.0f)) / 2;
                double left = 6 * (midpoint - 0.00001);
                for (std::size_t c = 0; c < 6; ++c)
                {
                    const double share = c < 3 ? left / static_cast<double>(4 - c) : left;
                    const auto value = static_cast<float>(share < 0 ? 0 : share);
                    image[4 * (6 * i - 3 + c) + k] = value;
                    left -= value;
                }
            }
        expectSameAsPlain(image, s);
    }
}

TEST(Resize, FloatsThatAreNoOrdinaryLevels)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float values[] = {infinity, -infinity, std::nanf(""), -0.0f, -0.5f, -1e30f, 3e38f, 1e-45f};
    Images images(4);
    for (const Sizes s : {Sizes{16, 16, 4, 4}, {7, 9, 3, 4}, {5, 5, 17, 13}, {4, 4, 2, 2}})
        for (const float value : values)
        {
            Floats image = images.floats(s, 0);
            for (int i = 0; i < 3; ++i)
                image[images.upTo(static_cast<unsigned>(image.size())) - 1] = value;
            expectSameAsPlain(image, s);
        }
    // Positive and negative values that cancel leave nothing but the rounding of their sums.
    const Sizes s{60, 4, 10, 1};
    Floats image = images.floats(s, 0);
    for (std::size_t i = 0; i + 4 < image.size(); i += 8)
        for (std::size_t k = 0; k < 4; ++k)
            image[i + 4 + k] = -image[i + k];
    expectSameAsPlain(image, s);
}
