#include "krender/pixels/private/Resize.h"
#include "krender/pixels/private/ResizeFloatRows.h"
#include "krender/pixels/private/ResizePlain.h"
#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;
using Floats = std::vector<float>;

struct Sizes
{
    unsigned srcW, srcH, dstW, dstH;
};

template <class Component>
std::vector<Component> resized(const std::vector<Component>& src, Sizes s)
{
    using Format =
        std::conditional_t<std::is_same_v<Component, float>, krColorFormatRGBAFloat, krColorFormatRGBAFixed8>;
    const Format format;
    Component* pixels = format.resize(src.data(), s.srcW, s.srcH, s.dstW, s.dstH);
    std::vector<Component> dst(pixels, pixels + (pixels ? std::size_t{4} * s.dstW * s.dstH : 0));
    format.deallocate(pixels);
    return dst;
}

/// Resized in registers of two doubles and, where the processor has them, of four: the library itself only ever takes the
/// larger ones.
std::vector<Floats> resizedInEachWay(const Floats& src, Sizes s)
{
    std::vector<Floats> ways{resized(src, s)};
    for (const bool wide : {false, true})
        if (!wide || krPixels::hasWideRegisters())
        {
            ways.emplace_back(ways[0].size());
            krPixels::resize(src.data(), s.srcW, s.srcH, ways.back().data(), s.dstW, s.dstH, wide);
        }
    return ways;
}

std::vector<Bytes> resizedInEachWay(const Bytes& src, Sizes s) { return {resized(src, s)}; }

/// What must be equal, bit by bit; every NaN counts as the same.
std::vector<std::uint32_t> bits(const Floats& image)
{
    std::vector<std::uint32_t> result;
    for (const float f : image)
        result.push_back(std::isnan(f) ? 0x7FC00000 : std::bit_cast<std::uint32_t>(f));
    return result;
}

const Bytes& bits(const Bytes& image) { return image; }

template <class Component>
void expectSameAsPlain(const std::vector<Component>& src, Sizes s)
{
    SCOPED_TRACE(testing::Message() << s.srcW << " x " << s.srcH << " to " << s.dstW << " x " << s.dstH);
    std::vector<Component> exact(std::size_t{4} * s.dstW * s.dstH);
    krPixels::resizePlainly(src.data(), s.srcW, s.srcH, exact.data(), s.dstW, s.dstH);
    for (const auto& fast : resizedInEachWay(src, s))
        EXPECT_TRUE(bits(fast) == bits(exact));
}

/// Random images: of anything, flat, and of extremes.
void expectSameAsPlain(std::mt19937& random, Sizes s)
{
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (int kind = 0; kind < 3; ++kind)
    {
        Bytes bytes(std::size_t{4} * s.srcW * s.srcH, 200);
        Floats floats(bytes.size(), 0.3f);
        for (std::size_t i = 0; i < bytes.size() && kind != 1; ++i)
        {
            const auto any = static_cast<unsigned>(random());
            bytes[i] = static_cast<unsigned char>(kind == 0 ? any : any % 2 * 255);
            floats[i] = std::ldexp(unit(random), kind == 0 ? 0 : static_cast<int>(any % 80) - 70);
        }
        expectSameAsPlain(bytes, s);
        expectSameAsPlain(floats, s);
    }
}

} // namespace

TEST(Resize, NoImageNoSizeAndNoChangeAnswerNull)
{
    const Bytes image(64);
    const krColorFormatRGBAFixed8 format;
    EXPECT_EQ(format.resize(nullptr, 4, 4, 2, 2), nullptr);
    for (const Sizes s :
         {Sizes{4, 4, 4, 4}, {0, 4, 2, 2}, {4, 0, 2, 2}, {4, 4, 0, 2}, {4, 4, 2, 0}, {4, 4, 0xFFFFFFFF, 0xFFFFFFFF}})
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
    EXPECT_EQ(resized(image, {4, 4, 2, 2}), (Bytes{0, 1, 2, 3, 15, 16, 17, 18, 90, 91, 92, 93, 105, 106, 107, 108}));
}

TEST(Resize, FloatsAreNudgedAndClamped)
{
    const Floats pixel{static_cast<float>(0.25 + 0.00001), 0, 1, 1};
    for (const Floats& dst : resizedInEachWay(Floats{0.25f, -3.0f, 1.0f, 7.0f}, {1, 1, 2, 1}))
        EXPECT_EQ(dst, (Floats{pixel[0], 0, 1, 1, pixel[0], 0, 1, 1}));
}

TEST(Resize, SameBitsAsThePlainForm)
{
    std::vector<Sizes> sizes = {
        {1, 1, 9, 7},     {1, 30, 5, 3},       {30, 1, 3, 5},    {3, 2, 700, 1},      {2, 3, 1, 700},
        {2, 2, 211, 97},  {257, 129, 31, 200}, {300, 301, 1, 2}, {512, 256, 128, 64}, {100, 100, 33, 77},
        {1, 70001, 1, 3}, {70001, 1, 3, 1},    {600, 3, 2, 1},   {64, 64, 127, 65},   {5, 2, 5, 9},
        {40, 8, 20, 8},   {1000, 2, 999, 1},
    };
    std::mt19937 random(1);
    const auto upTo = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit) + 1; };
    for (unsigned round = 0; round < 100; ++round)
    {
        const unsigned limit = round % 2 ? 12 : 60;
        sizes.push_back({upTo(limit), upTo(limit), upTo(limit), upTo(limit) + 60});
    }
    for (const Sizes& s : sizes)
        expectSameAsPlain(random, s);
}

TEST(Resize, ByteAveragesAtTheTruncationEdge)
{
    struct Row
    {
        const char* fault;
        Sizes sizes;
        unsigned char level; ///< of all bytes
        unsigned lowered;    ///< so many pixels in the last average are one less
        unsigned char average;
    };
    const Row rows[] = {
        {"whole, but below it when divided in float: 82", {164, 1, 2, 1}, 1, 0, 1},
        {"94", {188, 1, 2, 1}, 255, 0, 255},
        {"76 x 50", {152, 100, 2, 2}, 200, 0, 200},
        {"a little less than whole, in 62 x 62", {124, 124, 2, 2}, 255, 1, 254},
        {"in 66 x 66, divided with a remainder", {132, 132, 2, 2}, 255, 1, 254},
        {"whole in 66 x 66", {132, 132, 2, 2}, 255, 0, 255},
        {"in 256 x 256, nearly too many for float", {512, 512, 2, 2}, 255, 1, 254},
        {"lifted by the nudge", {800, 1000, 2, 2}, 100, 1, 100},
        {"lifted to the very level", {800, 1000, 2, 2}, 100, 2, 100},
        {"not lifted far enough", {800, 1000, 2, 2}, 100, 3, 99},
        {"at the level, decided by the rounding of many weights", {2000, 300, 3, 2}, 3, 1, 2},
        {"the same within a single column", {1, 200000, 5, 2}, 5, 1, 4},
        {"more rows than sums in float hold", {1, 140000, 1, 2}, 255, 1, 254},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.fault);
        const auto& [srcW, srcH, dstW, dstH] = row.sizes;
        Bytes image(std::size_t{4} * srcW * srcH, row.level);
        const std::size_t inside = (srcH > 1 ? std::size_t{srcH - srcH / dstH} : 0) * srcW + srcW - srcW / dstW;
        for (std::size_t i = 0; i < std::size_t{4} * row.lowered; ++i)
            --image[4 * inside + i];
        const Bytes dst = resized(image, row.sizes);
        EXPECT_EQ(Bytes(dst.end() - 4, dst.end()), Bytes(4, row.average));
    }
}

TEST(Resize, FloatAveragesOnRoundingMidpoints)
{
    // Blocks whose sum over their length, with the nudge, is so near to the middle between two floats that a product with
    // the reciprocal of the length rounds to the other one.
    struct Row
    {
        unsigned length;
        float most;    ///< of all pixels but three
        float rest[3]; ///< brings the sum to the last bit of a double
        float average;
    };
    const Row rows[] = {
        {6, 0x1.24p-2f, {0x1.ba491ap-1f, 0x1.bbecaap-25f, 0x1.4p-50f}, 0x1.257054p-2f},
        {14, 0x1.1p-2f, {0x1.a25da6p-1f, 0x1.612838p-25f, 0x1.8p-50f}, 0x1.117db8p-2f},
        {22, 0x1.6p-2f, {0x1.119b92p+0f, 0x1.0663c6p-25f, 0x1.8p-49f}, 0x1.61c1dp-2f},
        {50, 0x1.3ap-1f, {0x1.f305f8p+0f, 0x1.916878p-26f, 0}, 0x1.3b2044p-1f},
        {98, 0x1.b2p-1f, {0x1.55583ap+1f, 0x1.540cc8p-24f, 0}, 0x1.b2a6ep-1f},
        {206, 0x1.2cp-1f, {0x1.408ac4p+1f, 0x1.ef5edp-24f, 0}, 0x1.2ddc3ep-1f},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.length);
        // The second of two averages begins half a block from the start; the order of the sum does not matter, as it is
        // exact.
        Floats image(std::size_t{8} * row.length, row.most);
        for (std::size_t i = 0; i < 12; ++i)
            image[std::size_t{2} * row.length + i] = row.rest[i / 4];
        for (const bool upright : {false, true})
            for (const Floats& dst :
                 resizedInEachWay(image, upright ? Sizes{1, 2 * row.length, 1, 2} : Sizes{2 * row.length, 1, 2, 1}))
                EXPECT_EQ(Floats(dst.begin() + 4, dst.end()), Floats(4, row.average));
    }
}

TEST(Resize, FloatsThatAreNotFiniteOrNegative)
{
    const float infinity = std::numeric_limits<float>::infinity();
    std::mt19937 random(4);
    for (const Sizes s : {Sizes{16, 16, 4, 4}, {7, 9, 3, 4}, {5, 5, 17, 13}, {4, 4, 2, 2}})
        for (const float value : {infinity, -infinity, std::nanf(""), -0.0f, -0.5f, -1e30f, 3e38f, 1e-45f})
        {
            Floats image(std::size_t{4} * s.srcW * s.srcH);
            for (float& f : image)
                f = static_cast<float>(random() % 256) / 255;
            for (int i = 0; i < 3; ++i)
                image[random() % image.size()] = value;
            expectSameAsPlain(image, s);
        }
    // Positive and negative values that cancel leave nothing but the rounding of their sums.
    const Sizes s{60, 4, 10, 1};
    Floats image(std::size_t{4} * s.srcW * s.srcH);
    for (std::size_t i = 0; i < image.size(); ++i)
        image[i] = i / 4 % 2 ? -image[i - 4] : static_cast<float>(random() % 256) / 255;
    expectSameAsPlain(image, s);
}
