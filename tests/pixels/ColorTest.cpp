#include <krender/pixels/Color.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>

using krColor::Color;

namespace
{

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

struct Row
{
    const char* name;
    Color actual;
    float r, g, b, a;
};

void expectNear(float actual, float expected)
{
    if (std::isnan(expected))
        EXPECT_TRUE(std::isnan(actual)) << actual;
    else
        EXPECT_NEAR(actual, expected, 1e-6f * std::fmax(1.0f, std::fabs(expected)));
}

void expectRow(const Row& row)
{
    SCOPED_TRACE(row.name);
    expectNear(row.actual.r, row.r);
    expectNear(row.actual.g, row.g);
    expectNear(row.actual.b, row.b);
    expectNear(row.actual.a, row.a);
}

void expectRows(std::initializer_list<Row> rows)
{
    for (const Row& row : rows)
        expectRow(row);
}

template <class Component>
Color encoded(const Color& color, Color::ColorType type)
{
    Component x[4] = {9, 9, 9, 9};
    color.get(type, x[0], x[1], x[2], x[3]);
    return {static_cast<float>(x[0]), static_cast<float>(x[1]), static_cast<float>(x[2]), static_cast<float>(x[3])};
}

template <class Component>
Color decoded(Color::ColorType type, Component x0, Component x1, Component x2, Component x3)
{
    Color color(0.1f, 0.2f, 0.3f, 0.9f);
    color.set(type, x0, x1, x2, x3);
    return color;
}

// Copied at load, before or after the library's own constants.
const Row gNamed[] = {
    {"transparent", Color::kTransparent, 0, 0, 0, 0},
    {"Ctransparent", Color::kCtransparent, 0, 0, 0, 0},
    {"black", Color::kCblack, 0, 0, 0, 1},
    {"blue", Color::kCblue, 0, 0, 1, 1},
    {"green", Color::kCgreen, 0, 1, 0, 1},
    {"dark green", Color::kCdarkgreen, 0, 0.4f, 0, 1},
    {"cyan", Color::kCcyan, 0, 1, 1, 1},
    {"red", Color::kCred, 1, 0, 0, 1},
    {"magenta", Color::kCmagenta, 1, 0, 1, 1},
    {"yellow", Color::kCyellow, 1, 1, 0, 1},
    {"white", Color::kCwhite, 1, 1, 1, 1},
    {"grey", Color::kCgrey, 0.5f, 0.5f, 0.5f, 1},
    {"default", Color(), 0, 0, 0, 1},
};

} // namespace

TEST(Color, NamedConstantsServeOtherInitialisers)
{
    for (const Row& row : gNamed)
        expectRow(row);
    EXPECT_EQ(Color::fsTransparentIndex, 255);
}

TEST(Color, ArraysHoldRedGreenBlueAlpha)
{
    float rgba[4] = {};
    Color(0.1f, 0.2f, 0.3f, 0.4f).toRGBA(rgba);
    Color color;
    color.fromRGBA(rgba);
    expectRows(
        {{"out", {rgba[0], rgba[1], rgba[2], rgba[3]}, 0.1f, 0.2f, 0.3f, 0.4f}, {"in", color, 0.1f, 0.2f, 0.3f, 0.4f}});
}

TEST(Color, EncodingsBothWays)
{
    struct Encoding
    {
        const char* name;
        int type;
        float x[4];
        Color color;
    };
    const Encoding encodings[] = {
        {"plain", 0, {0.1f, 0.2f, 0.3f, 0.4f}, {0.1f, 0.2f, 0.3f, 0.4f}},
        {"HSV, first sixth of the circle", 1, {45, 0.5f, 0.8f, 0.3f}, {0.8f, 0.7f, 0.4f, 0.3f}},
        {"HSV, second", 1, {105, 0.5f, 0.8f, 0.3f}, {0.5f, 0.8f, 0.4f, 0.3f}},
        {"HSV, third", 1, {165, 0.5f, 0.8f, 0.3f}, {0.4f, 0.8f, 0.7f, 0.3f}},
        {"HSV, fourth", 1, {225, 0.5f, 0.8f, 0.3f}, {0.4f, 0.5f, 0.8f, 0.3f}},
        {"HSV, fifth", 1, {285, 0.5f, 0.8f, 0.3f}, {0.7f, 0.4f, 0.8f, 0.3f}},
        {"HSV, sixth", 1, {345, 0.5f, 0.8f, 0.3f}, {0.8f, 0.4f, 0.5f, 0.3f}},
        {"HSV, pure red is a full turn", 1, {360, 1, 1, 1}, {1, 0, 0, 1}},
        {"HSV, pale red is one too", 1, {360, 0.5f, 0.8f, 1}, {0.8f, 0.4f, 0.4f, 1}},
        {"inverted", 2, {0.9f, 0.8f, 0.7f, 0.6f}, {0.1f, 0.2f, 0.3f, 0.6f}},
        {"CMYK keeps alpha", 3, {0, 0.25f, 0.5f, 0.25f}, {0.75f, 0.5f, 0.25f, 0.9f}},
        {"unknown, below", -1, {9, 9, 9, 9}, {0.1f, 0.2f, 0.3f, 0.9f}},
        {"unknown, above", 4, {9, 9, 9, 9}, {0.1f, 0.2f, 0.3f, 0.9f}},
    };
    for (const auto& [name, number, x, color] : encodings)
    {
        const auto type = static_cast<Color::ColorType>(number);
        float first[3] = {9, 9, 9};
        color.get(type, first[0], first[1], first[2]);
        expectRows({{name, encoded<float>(color, type), x[0], x[1], x[2], x[3]},
                    {name, encoded<double>(color, type), x[0], x[1], x[2], x[3]},
                    {name, {first[0], first[1], first[2], x[3]}, x[0], x[1], x[2], x[3]},
                    {name, decoded(type, x[0], x[1], x[2], x[3]), color.r, color.g, color.b, color.a},
                    {name, decoded<double>(type, x[0], x[1], x[2], x[3]), color.r, color.g, color.b, color.a}});
    }
}

TEST(Color, IntegersScaleByTheirLargestValueRoundAndWrap)
{
    using Byte = unsigned char;
    using Word = unsigned short;
    const Color color(0.2f, 0.4f, 0.6f, 0.8f);
    const Color odd(1.002f, -1.0f / 255, 1e30f, 0.5f); // one half is rounded away from 0
    const auto unknown = static_cast<Color::ColorType>(4);
    expectRows({{"to bytes", encoded<Byte>(color, Color::kRGBA), 51, 102, 153, 204},
                {"to words", encoded<Word>(color, Color::kRGBA), 13107, 26214, 39321, 52428},
                {"from bytes", decoded<Byte>(Color::kRGBA, 51, 102, 153, 204), 0.2f, 0.4f, 0.6f, 0.8f},
                {"from words", decoded<Word>(Color::kRGBA, 13107, 26214, 39321, 52428), 0.2f, 0.4f, 0.6f, 0.8f},
                {"odd bytes", encoded<Byte>(odd, Color::kRGBA), 0, 255, 0, 128},
                {"odd words", encoded<Word>(odd, Color::kRGBA), 130, 65279, 0, 32768},
                {"byte of a hue", encoded<Byte>(Color::kCblue, Color::kHSVA), 240 * 255 % 256, 255, 255, 255},
                {"unknown", encoded<Byte>(color, unknown), 9, 9, 9, 9}});
}

TEST(Color, ToHsvOfUnusualColours)
{
    const auto hsv = [](float r, float g, float b)
    {
        Color result;
        Color(r, g, b, 1).toHSV(result.r, result.g, result.b);
        return result;
    };
    expectRows({{"black", hsv(0, 0, 0), 0, 0, 0, 1},
                {"grey", hsv(0.5f, 0.5f, 0.5f), 0, 0, 0.5f, 1},
                {"hardly brighter than black", hsv(0.00001f, 0, 0), 0, 0, 0.00001f, 1},
                {"just brighter than that", hsv(0.00002f, 0, 0), 360, 1, 0.00002f, 1},
                {"hardly a colour", hsv(0.5f, 0.5f, 0.499995f), 0, 0.00001f, 0.5f, 1},
                {"just a colour", hsv(0.5f, 0.5f, 0.49998f), 60, 0.00004f, 0.5f, 1},
                {"negative", hsv(-1, -2, -3), 30, 0, -1, 1},
                {"slightly negative", hsv(-0.000005f, -1, -1), 0, 0, -0.000005f, 1},
                {"NaN red", hsv(kNaN, 0.5f, 0.25f), kNaN, kNaN, kNaN, 1},
                {"NaN green", hsv(0.5f, kNaN, 0.25f), kNaN, 0.5f, 0.5f, 1},
                {"NaN blue", hsv(0.5f, 0.25f, kNaN), kNaN, 0.5f, 0.5f, 1}});
}

TEST(Color, FromHsvTakesHuesFrom0To420)
{
    const auto rgb = [](float hue) { return decoded(Color::kHSVA, hue, 1.0f, 1.0f, 0.8f); };
    expectRows({{"0", rgb(0), 1, 0, 0, 0.8f},
                {"390", rgb(390), 1, 0.5f, 0, 0.8f},
                {"just below 420", rgb(419.9999f), 1, 0.999998f, 0, 0.8f},
                {"420", rgb(420), 0.1f, 0.2f, 0.3f, 0.8f},
                {"far beyond", rgb(1e20f), 0.1f, 0.2f, 0.3f, 0.8f},
                {"just below 0", rgb(-1e-30f), 0.1f, 0.2f, 0.3f, 0.8f},
                {"-10", rgb(-10), 0.1f, 0.2f, 0.3f, 0.8f},
                {"NaN", rgb(kNaN), 0.1f, 0.2f, 0.3f, 0.8f}});
}

TEST(Color, CmykBeyondTheRange)
{
    expectRows({{"black ink is at most 1", encoded<float>({-1, -1, -2, 1}, Color::kCMYK), 1, 1, 2, 1},
                {"raised to 0, not lowered to 1", decoded(Color::kCMYK, -1.0f, 0.5f, 0.75f, 0.5f), 1.5f, 0, 0, 0.9f}});
}

TEST(Color, XColorHoldsRedHighestOnlyAtDepth24)
{
    struct Visual
    {
        std::int16_t depth;
        Color color;
        std::uint32_t pixel;
    };
    const Visual visuals[] = {{24, {1, 0.5f, 0, 1}, 0xFF7F00},
                              {24, {0, 0, 0.999f, 1}, 254},
                              {30, {1, 0.5f, 1.0f / 255, 1}, (255U << 2) + (127U << 12) + (1U << 22)},
                              {15, {1, 0.5f, 0, 1}, (255U >> 3) + (127U << 2)}}; // red loses its lowest three bits
    const std::int16_t depth = Color::fsDepth;
    EXPECT_EQ(depth, 24);
    for (const Visual& visual : visuals)
    {
        Color::fsDepth = visual.depth;
        EXPECT_EQ(visual.color.asXColor(), visual.pixel) << "depth " << visual.depth;
    }
    Color::fsDepth = depth;
}

TEST(Color, EquivalentIgnoresToleranceAndAlpha)
{
    const float most = 0.00001f; // a little less than the number in decimals
    const float more = std::nextafter(most, 1.0f);
    const Color black(0, 0, 0, 1);
    for (const float tolerance : {0.0f, 10.0f})
    {
        EXPECT_TRUE(black.equivalent({most, -most, most, 0}, tolerance));
        EXPECT_FALSE(black.equivalent({more, 0, 0, 1}, tolerance));
        EXPECT_FALSE(black.equivalent({0, -more, 0, 1}, tolerance));
        EXPECT_FALSE(black.equivalent({0, 0, more, 1}, tolerance));
    }
}

TEST(Color, ArithmeticClampsColourAndKeepsAlpha)
{
    const Color color(0.8f, 0.8f, 0.5f, 0.25f);
    const Color other(0.5f, 0, -1, 1);
    expectRows({{"+= colour", Color(color) += other, 1, 0.8f, 0, 0.25f},
                {"-= colour", Color(color) -= other, 0.3f, 0.8f, 1, 0.25f},
                {"*= colour", Color(color) *= other, 0.4f, 0, 0, 0.25f},
                {"/= colour, by 0 too", Color(color) /= other, 1, 1, 0, 0.25f},
                {"+= number", Color(color) += 0.25f, 1, 1, 0.75f, 0.25f},
                {"-= number", Color(color) -= 0.6f, 0.2f, 0.2f, 0, 0.25f},
                {"*= number", Color(color) *= 0.5f, 0.4f, 0.4f, 0.25f, 0.25f},
                {"/= number", Color(color) /= 2.0f, 0.4f, 0.4f, 0.25f, 0.25f},
                {"/= 0", Color(-1, 0, 1, 0.25f) /= 0.0f, 0, kNaN, 1, 0.25f},
                {"number / colour", 0.4f / Color(0.8f, 0.2f, -1, 0.5f), 0.5f, 1, 0, 0.5f},
                {"^=", Color(1, 0.5f, 0, 0.25f) ^= Color(1, 1, 0.999f, 1), 0, 128 / 255.0f, 254 / 255.0f, 0.25f}});
}
