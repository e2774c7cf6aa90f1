#include <krender/pixels/Color.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using krColor::Color;

namespace
{

void expectComponents(const Color& color, float r, float g, float b, float a)
{
    EXPECT_FLOAT_EQ(color.r, r);
    EXPECT_FLOAT_EQ(color.g, g);
    EXPECT_FLOAT_EQ(color.b, b);
    EXPECT_FLOAT_EQ(color.a, a);
}

/// Restores the visual's depth at the end of a test.
class Depth
{
public:
    explicit Depth(std::int16_t depth) : fBefore(Color::fsDepth) { Color::fsDepth = depth; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;
    ~Depth() { Color::fsDepth = fBefore; }

private:
    std::int16_t fBefore;
};

/// Calls check on each colour of a grid over the unit cube.
template <class Check>
void forGrid(Check check)
{
    for (int r = 0; r <= 10; ++r)
        for (int g = 0; g <= 10; ++g)
            for (int b = 0; b <= 10; ++b)
                check(Color(static_cast<float>(r) / 10, static_cast<float>(g) / 10, static_cast<float>(b) / 10, 0.25f));
}

const Color gCopiedAtLoad = Color::kCdarkgreen;

} // namespace

TEST(Color, ConstantsCanBeUsedByOtherInitialisers) { expectComponents(gCopiedAtLoad, 0, 0.4f, 0, 1); }

TEST(Color, HsvOfKnownColours)
{
    struct Row
    {
        const char* name;
        Color color;
        float h, s, v;
    };
    const Row rows[] = {
        {"red has a full turn", Color::kCred, 360, 1, 1},
        {"yellow", Color::kCyellow, 60, 1, 1},
        {"green", Color::kCgreen, 120, 1, 1},
        {"cyan", Color::kCcyan, 180, 1, 1},
        {"blue", Color::kCblue, 240, 1, 1},
        {"magenta", Color::kCmagenta, 300, 1, 1},
        {"grey", Color::kCgrey, 0, 0, 0.5f},
        {"black", Color::kCblack, 0, 0, 0},
        {"hardly a colour", Color(0.5f, 0.5f, 0.499995f, 1), 0, 0.00001f, 0.5f},
        {"negative", Color(-1, -2, -3, 1), 30, 0, -1},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        float h = -1;
        float s = -1;
        float v = -1;
        row.color.toHSV(h, s, v);
        EXPECT_NEAR(h, row.h, 1e-4f);
        EXPECT_NEAR(s, row.s, 1e-6f);
        EXPECT_EQ(v, row.v);
    }
}

TEST(Color, EncodingsRoundTripOverTheCube)
{
    forGrid(
        [](const Color& color)
        {
            for (const auto type : {Color::kRGBA, Color::kHSVA, Color::kInvertedRGBA, Color::kCMYK})
            {
                double x[4] = {};
                color.get(type, x[0], x[1], x[2], x[3]);
                Color back(0.1f, 0.2f, 0.3f, 0.25f);
                back.set(type, x[0], x[1], x[2], x[3]);
                EXPECT_NEAR(back.r, color.r, 1e-6f) << type;
                EXPECT_NEAR(back.g, color.g, 1e-6f) << type;
                EXPECT_NEAR(back.b, color.b, 1e-6f) << type;
                EXPECT_EQ(back.a, 0.25f) << type;
            }
        });
}

TEST(Color, IntegerEncodingsRoundTripExactly)
{
    for (unsigned i = 0; i < 256; ++i)
    {
        const auto byte = static_cast<unsigned char>(i);
        const auto word = static_cast<unsigned short>(i * 257);
        Color color;
        color.set(Color::kRGBA, byte, byte, byte, byte);
        unsigned short words[4] = {};
        color.get(Color::kRGBA, words[0], words[1], words[2], words[3]);
        EXPECT_EQ(words[3], word);
        color.set(Color::kInvertedRGBA, word, word, word, word);
        unsigned char bytes[3] = {};
        color.get(Color::kInvertedRGBA, bytes[0], bytes[1], bytes[2]);
        EXPECT_EQ(bytes[1], byte);
    }
}

TEST(Color, HuesOutsideTheWheelChangeNothing)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float hue : {-10.0f, -1e-30f, 420.0f, 1e20f, nan})
    {
        Color color(0.1f, 0.2f, 0.3f, 0.4f);
        color.set(Color::kHSVA, hue, 1.0f, 1.0f, 0.9f);
        expectComponents(color, 0.1f, 0.2f, 0.3f, 0.9f);
    }
    Color color = Color::kCblue;
    color.fromHSV(360, 1, 1);
    expectComponents(color, 1, 0, 0, 1);
    color.fromHSV(390, 1, 1); // beyond a turn the first sector continues
    expectComponents(color, 1, 0.5f, 0, 1);
}

TEST(Color, UnknownEncodingsChangeNothing)
{
    for (const int type : {-1, 4})
    {
        Color color(0.1f, 0.2f, 0.3f, 0.4f);
        color.set(static_cast<Color::ColorType>(type), 1.0f, 1.0f, 1.0f, 1.0f);
        expectComponents(color, 0.1f, 0.2f, 0.3f, 0.4f);
        unsigned char bytes[4] = {1, 2, 3, 4};
        color.get(static_cast<Color::ColorType>(type), bytes[0], bytes[1], bytes[2], bytes[3]);
        EXPECT_EQ(bytes[0] + bytes[1] + bytes[2] + bytes[3], 10);
        double numbers[3] = {1, 2, 3};
        color.get(static_cast<Color::ColorType>(type), numbers[0], numbers[1], numbers[2]);
        EXPECT_EQ(numbers[0] + numbers[1] + numbers[2], 6);
    }
}

TEST(Color, UnclampedComponentsWrapAsIntegers)
{
    unsigned char bytes[4] = {};
    Color(1.002f, -1.0f / 255, 1e30f, 0.5f).get(Color::kRGBA, bytes[0], bytes[1], bytes[2], bytes[3]);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[1], 255);
    EXPECT_EQ(bytes[2], 0);
    EXPECT_EQ(bytes[3], 128) << "127.5 is rounded away from 0";
    Color::kCblue.get(Color::kHSVA, bytes[0], bytes[1], bytes[2], bytes[3]);
    EXPECT_EQ(bytes[0], (240 * 255) % 256);
    unsigned short words[3] = {};
    Color::kCblue.get(Color::kHSVA, words[0], words[1], words[2]);
    EXPECT_EQ(words[0], (240 * 65535) % 65536);
}

TEST(Color, CmykTakesOutTheCommonBlack)
{
    struct Row
    {
        Color color;
        float c, m, y, k;
    };
    const Row rows[] = {{Color::kCwhite, 0, 0, 0, 0},
                        {Color::kCblack, 0, 0, 0, 1},
                        {Color(0.75f, 0.5f, 0.25f, 1), 0, 0.25f, 0.5f, 0.25f},
                        {Color(-1, -1, -2, 1), 1, 1, 2, 1}};
    for (const Row& row : rows)
    {
        float x[4] = {};
        row.color.toCMYK(x[0], x[1], x[2], x[3]);
        expectComponents(Color(x[0], x[1], x[2], x[3]), row.c, row.m, row.y, row.k);
    }
    Color color;
    color.fromCMYK(-1, 0.5f, 0.75f, 0.5f);
    expectComponents(color, 1.5f, 0, 0, 1); // raised to 0, not lowered to 1
}

TEST(Color, XColorHoldsRedHighestOnlyAtDepth24)
{
    const Color orange(1, 0.5f, 0, 1);
    EXPECT_EQ(orange.asXColor(), 0xFF7F00U);
    EXPECT_EQ(Color(0, 0, 0.999f, 1).asXColor(), 254U);
    {
        const Depth depth(30);
        EXPECT_EQ(Color(1, 0.5f, 1.0f / 255, 1).asXColor(), (255U << 2) + (127U << 12) + (1U << 22));
    }
    {
        const Depth depth(15); // 5 bits: red loses its lowest three
        EXPECT_EQ(orange.asXColor(), (255U >> 3) + (127U << 2));
    }
}

TEST(Color, EquivalentIgnoresToleranceAndAlpha)
{
    const Color color(0.5f, 0.5f, 0.5f, 1);
    EXPECT_FALSE(color.equivalent(Color(0.6f, 0.5f, 0.5f, 1), 10));
    EXPECT_FALSE(color.equivalent(Color(0.5f, 0.5f, 0.50002f, 1), 10));
    EXPECT_TRUE(color.equivalent(Color(0.500009f, 0.499991f, 0.5f, 0), 0));
}

TEST(Color, ArithmeticClampsColourAndKeepsAlpha)
{
    const Color color(0.8f, 0.8f, 0.5f, 0.25f);
    const Color other(0.5f, 0, -1, 1);
    Color sum = color;
    expectComponents(sum += other, 1, 0.8f, 0, 0.25f);
    Color difference = color;
    expectComponents(difference -= other, 0.3f, 0.8f, 1, 0.25f);
    Color product = color;
    expectComponents(product *= other, 0.4f, 0, 0, 0.25f);
    Color quotient = color;
    expectComponents(quotient /= other, 1, 1, 0, 0.25f); // by 0: infinity is clamped
    Color scaled = color;
    expectComponents((scaled *= 0.5f) += 0.25f, 0.65f, 0.65f, 0.5f, 0.25f);
    expectComponents((scaled -= 0.5f) /= 0.5f, 0.3f, 0.3f, 0, 0.25f);
    expectComponents(0.4f / Color(0.8f, 0.2f, -1, 0.5f), 0.5f, 1, 0, 0.5f);

    Color undefined = Color::kCblack;
    undefined /= 0.0f;
    EXPECT_TRUE(std::isnan(undefined.r));
    Color negative(-1, 0.5f, 0.5f, 1);
    EXPECT_EQ((negative /= 0.0f).r, 0.0f);
}

TEST(Color, ExclusiveOrWorksOnTruncatedBytes)
{
    Color color(1, 0.5f, 0, 0.25f);
    color ^= Color(1, 1, 0.999f, 1);
    expectComponents(color, 0, (127 ^ 255) / 255.0f, 254 / 255.0f, 0.25f);
}
