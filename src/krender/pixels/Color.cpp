#include <krender/pixels/Color.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace krColor
{

namespace
{

/// Values and differences up to this count as 0. A double, so that 0.00001f, which is a little smaller, is less than it.
constexpr double kNegligible = 0.00001;

/// Truncates toward zero. NaN and values beyond 32 bits become the least integer, whose low bits are 0.
std::int32_t truncated(float x) noexcept
{
    constexpr float kLimit = 2147483648.0f;
    if (!(x > -kLimit && x < kLimit))
        return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(x);
}

/// A component as an integer, 1 being the type's maximum; it wraps where it does not fit.
template <class Integer>
Integer scaled(float component) noexcept
{
    constexpr auto kMaximum = static_cast<float>(std::numeric_limits<Integer>::max());
    return static_cast<Integer>(truncated(std::roundf(kMaximum * component)));
}

/// The component that an integer stands for.
template <class Integer>
float unscaled(Integer x) noexcept
{
    return static_cast<float>(x / static_cast<double>(std::numeric_limits<Integer>::max()));
}

/// A component as one of the types of get.
template <class Component>
Component component(float x) noexcept
{
    if constexpr (std::numeric_limits<Component>::is_integer)
        return scaled<Component>(x);
    else
        return x;
}

bool isKnown(Color::ColorType type) noexcept { return type >= Color::kRGBA && type <= Color::kCMYK; }

/// The four components in an encoding, converted from the floats.
template <class Component>
void getConverted(const Color& color, Color::ColorType type, Component& x0, Component& x1, Component& x2,
                  Component& x3) noexcept
{
    if (!isKnown(type))
        return;
    float f0 = 0.0f;
    float f1 = 0.0f;
    float f2 = 0.0f;
    float f3 = 0.0f;
    color.get(type, f0, f1, f2, f3);
    x0 = component<Component>(f0);
    x1 = component<Component>(f1);
    x2 = component<Component>(f2);
    x3 = component<Component>(f3);
}

/// Applies an operation to r, g and b and clamps the results; std::clamp lets NaN through.
template <class Operation>
Color& combine(Color& color, float r, float g, float b, Operation operation) noexcept
{
    color.r = std::clamp(operation(color.r, r), 0.0f, 1.0f);
    color.g = std::clamp(operation(color.g, g), 0.0f, 1.0f);
    color.b = std::clamp(operation(color.b, b), 0.0f, 1.0f);
    return color;
}

constexpr auto kAdd = [](float x, float y) { return x + y; };
constexpr auto kSubtract = [](float x, float y) { return x - y; };
constexpr auto kMultiply = [](float x, float y) { return x * y; };
constexpr auto kDivide = [](float x, float y) { return x / y; };

float exclusiveOr(float x, float y) noexcept
{
    const auto bits = static_cast<std::uint8_t>(truncated(x * 255.0f) ^ truncated(y * 255.0f));
    return static_cast<float>(bits / 255.0);
}

/// A left shift by any amount, a right shift where it is negative.
std::uint32_t shifted(std::uint32_t x, int left) noexcept
{
    if (left <= -32 || left >= 32)
        return 0;
    return left >= 0 ? x << left : x >> -left;
}

} // namespace

constinit std::int16_t Color::fsDepth = 24;
constinit std::int32_t Color::fsTransparentIndex = 255;

constinit const Color Color::kTransparent(0, 0, 0, 0);
constinit const Color Color::kCtransparent(0, 0, 0, 0);
constinit const Color Color::kCblack(0, 0, 0, 1);
constinit const Color Color::kCblue(0, 0, 1, 1);
constinit const Color Color::kCgreen(0, 1, 0, 1);
constinit const Color Color::kCdarkgreen(0, 0.4f, 0, 1);
constinit const Color Color::kCcyan(0, 1, 1, 1);
constinit const Color Color::kCred(1, 0, 0, 1);
constinit const Color Color::kCmagenta(1, 0, 1, 1);
constinit const Color Color::kCyellow(1, 1, 0, 1);
constinit const Color Color::kCwhite(1, 1, 1, 1);
constinit const Color Color::kCgrey(0.5f, 0.5f, 0.5f, 1);

void Color::toRGBA(float* rgba) const noexcept
{
    rgba[0] = r;
    rgba[1] = g;
    rgba[2] = b;
    rgba[3] = a;
}

void Color::fromRGBA(const float* rgba) noexcept
{
    r = rgba[0];
    g = rgba[1];
    b = rgba[2];
    a = rgba[3];
}

void Color::toHSV(float& h, float& s, float& v) const noexcept
{
    h = 0.0f;
    s = 1.0f;
    v = std::max({r, g, b});
    const float least = std::min({r, g, b});
    const float range = v - least;
    // The tests are written so that NaN, for which every comparison is false, is not taken for black or grey.
    if (!(std::fabs(v) <= kNegligible))
    {
        s = range / v;
        if (s != 0.0f && !(std::fabs(range) <= kNegligible))
        {
            const float rc = (v - r) / range;
            const float gc = (v - g) / range;
            const float bc = (v - b) / range;
            // Deliberate: pure red gets 5 + 1 sixths of the circle, 360 degrees and not 0. fromHSV takes 360 as red.
            if (v == r)
                h = g == least ? 5.0f + bc : 1.0f - gc;
            else if (v == g)
                h = b == least ? 1.0f + rc : 3.0f - bc;
            else
                h = r == least ? 3.0f + gc : 5.0f - rc;
            h *= 60.0f; // never negative, as no quotient exceeds 1
        }
    }
    if (v < kNegligible)
        s = 0.0f;
}

void Color::fromHSV(float h, float s, float v) noexcept
{
    if (!(h >= 0.0f && h < 420.0f))
        return;
    const float turn = h / 60.0f;
    const int sector = static_cast<int>(turn);
    const float f = turn - static_cast<float>(sector);
    const float p = (1.0f - s) * v;
    const float q = (1.0f - s * f) * v;
    const float t = (1.0f - (1.0f - f) * s) * v;
    switch (sector)
    {
    case 0:
    case 6:
        *this = Color(v, t, p, a);
        break;
    case 1:
        *this = Color(q, v, p, a);
        break;
    case 2:
        *this = Color(p, v, t, a);
        break;
    case 3:
        *this = Color(p, q, v, a);
        break;
    case 4:
        *this = Color(t, p, v, a);
        break;
    case 5:
        *this = Color(v, p, q, a);
        break;
    }
}

void Color::toCMYK(float& c, float& m, float& y, float& k) const noexcept
{
    c = 1.0f - r;
    m = 1.0f - g;
    y = 1.0f - b;
    k = std::min({c, m, y, 1.0f});
    c -= k;
    m -= k;
    y -= k;
}

void Color::fromCMYK(float c, float m, float y, float k) noexcept
{
    const auto lit = [k](float ink)
    {
        const float light = 1.0f - ink - k;
        return light < 0.0f ? 0.0f : light;
    };
    r = lit(c);
    g = lit(m);
    b = lit(y);
}

void Color::get(ColorType type, float& x0, float& x1, float& x2, float& x3) const noexcept
{
    switch (type)
    {
    case kRGBA:
        x0 = r;
        x1 = g;
        x2 = b;
        x3 = a;
        break;
    case kHSVA:
        toHSV(x0, x1, x2);
        x3 = a;
        break;
    case kInvertedRGBA:
        x0 = 1.0f - r;
        x1 = 1.0f - g;
        x2 = 1.0f - b;
        x3 = a;
        break;
    case kCMYK:
        toCMYK(x0, x1, x2, x3);
        break;
    }
}

void Color::get(ColorType type, double& x0, double& x1, double& x2, double& x3) const noexcept
{
    getConverted(*this, type, x0, x1, x2, x3);
}

void Color::get(ColorType type, unsigned char& x0, unsigned char& x1, unsigned char& x2,
                unsigned char& x3) const noexcept
{
    getConverted(*this, type, x0, x1, x2, x3);
}

void Color::get(ColorType type, unsigned short& x0, unsigned short& x1, unsigned short& x2,
                unsigned short& x3) const noexcept
{
    getConverted(*this, type, x0, x1, x2, x3);
}

void Color::get(ColorType type, float& x0, float& x1, float& x2) const noexcept
{
    float dropped = 0.0f;
    get(type, x0, x1, x2, dropped);
}

void Color::get(ColorType type, double& x0, double& x1, double& x2) const noexcept
{
    double dropped = 0.0;
    get(type, x0, x1, x2, dropped);
}

void Color::get(ColorType type, unsigned char& x0, unsigned char& x1, unsigned char& x2) const noexcept
{
    unsigned char dropped = 0;
    get(type, x0, x1, x2, dropped);
}

void Color::get(ColorType type, unsigned short& x0, unsigned short& x1, unsigned short& x2) const noexcept
{
    unsigned short dropped = 0;
    get(type, x0, x1, x2, dropped);
}

void Color::set(ColorType type, float x0, float x1, float x2, float x3) noexcept
{
    switch (type)
    {
    case kRGBA:
        *this = Color(x0, x1, x2, x3);
        break;
    case kHSVA:
        fromHSV(x0, x1, x2);
        a = x3;
        break;
    case kInvertedRGBA:
        *this = Color(1.0f - x0, 1.0f - x1, 1.0f - x2, x3);
        break;
    case kCMYK:
        fromCMYK(x0, x1, x2, x3);
        break;
    }
}

void Color::set(ColorType type, double x0, double x1, double x2, double x3) noexcept
{
    set(type, static_cast<float>(x0), static_cast<float>(x1), static_cast<float>(x2), static_cast<float>(x3));
}

void Color::set(ColorType type, unsigned char x0, unsigned char x1, unsigned char x2, unsigned char x3) noexcept
{
    set(type, unscaled(x0), unscaled(x1), unscaled(x2), unscaled(x3));
}

void Color::set(ColorType type, unsigned short x0, unsigned short x1, unsigned short x2, unsigned short x3) noexcept
{
    set(type, unscaled(x0), unscaled(x1), unscaled(x2), unscaled(x3));
}

std::uint32_t Color::asXColor() const noexcept
{
    const auto red = static_cast<std::uint32_t>(truncated(r * 255.0f));
    const auto green = static_cast<std::uint32_t>(truncated(g * 255.0f));
    const auto blue = static_cast<std::uint32_t>(truncated(b * 255.0f));
    if (fsDepth == 24)
        return (red << 16) + (green << 8) + blue;
    // Deliberate: at any other depth red takes the lowest bits, the reverse of the layout above.
    const int bits = fsDepth / 3;
    return shifted(red, bits - 8) + shifted(green, 2 * bits - 8) + shifted(blue, 3 * bits - 8);
}

bool Color::equivalent(const Color& other, float /*tolerance*/) const noexcept
{
    // Deliberate: the answer does not depend on the caller's tolerance.
    return std::fabs(r - other.r) <= kNegligible && std::fabs(g - other.g) <= kNegligible &&
           std::fabs(b - other.b) <= kNegligible;
}

Color& Color::operator+=(const Color& other) noexcept { return combine(*this, other.r, other.g, other.b, kAdd); }
Color& Color::operator-=(const Color& other) noexcept { return combine(*this, other.r, other.g, other.b, kSubtract); }
Color& Color::operator*=(const Color& other) noexcept { return combine(*this, other.r, other.g, other.b, kMultiply); }
Color& Color::operator/=(const Color& other) noexcept { return combine(*this, other.r, other.g, other.b, kDivide); }
Color& Color::operator+=(float value) noexcept { return combine(*this, value, value, value, kAdd); }
Color& Color::operator-=(float value) noexcept { return combine(*this, value, value, value, kSubtract); }
Color& Color::operator*=(float value) noexcept { return combine(*this, value, value, value, kMultiply); }
Color& Color::operator/=(float value) noexcept { return combine(*this, value, value, value, kDivide); }

Color& Color::operator^=(const Color& other) noexcept
{
    r = exclusiveOr(r, other.r);
    g = exclusiveOr(g, other.g);
    b = exclusiveOr(b, other.b);
    return *this;
}

Color operator/(float s, const Color& c) noexcept
{
    Color quotient(s, s, s, c.a);
    return quotient /= c;
}

} // namespace krColor
