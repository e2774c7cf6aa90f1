#pragma once
#include <krender/Export.h>

#include <cstdint>

namespace krColor
{

/// A colour with alpha: four floats, nominally in [0, 1]. Components outside that range are kept, except that the
/// arithmetic operators clamp r, g and b to it, and fromCMYK raises negative ones to 0.
class KRENDER_EXPORT Color
{
public:
    /// How four components encode a colour in get and set.
    enum ColorType : std::int32_t
    {
        kRGBA = 0,         ///< red, green, blue, alpha
        kHSVA = 1,         ///< hue in degrees, saturation, value, alpha
        kInvertedRGBA = 2, ///< 1 - red, 1 - green, 1 - blue, alpha
        kCMYK = 3,         ///< cyan, magenta, yellow, black; alpha is neither read nor written
    };

    /// Opaque black.
    constexpr Color() noexcept = default;
    constexpr Color(float red, float green, float blue, float alpha) noexcept : r(red), g(green), b(blue), a(alpha) {}

    /// Copies r, g, b, a out.
    /// @param rgba  room for four floats
    void toRGBA(float* rgba) const noexcept;
    /// Copies r, g, b, a in.
    /// @param rgba  four floats
    void fromRGBA(const float* rgba) noexcept;

    /// The hexcone model (A. R. Smith, "Color Gamut Transform Pairs", 1978). With NaN components, h, s and v may be NaN.
    /// @param h  degrees in [0, 360]; 0 for greys. Pure red gives 360, not 0.
    /// @param s  in [0, 1]; 0 for black
    /// @param v  the largest of r, g and b
    void toHSV(float& h, float& s, float& v) const noexcept;
    /// Sets r, g and b and keeps alpha.
    /// @param h  degrees; from 360 to 420 the first sixth of the circle repeats; any other hue changes nothing
    void fromHSV(float h, float s, float v) noexcept;

    /// The black part k is what cyan, magenta and yellow share, at most 1; c, m and y are what remains of them.
    void toCMYK(float& c, float& m, float& y, float& k) const noexcept;
    /// Sets r, g and b, raised to 0 where negative, and keeps alpha.
    void fromCMYK(float c, float m, float y, float k) noexcept;

    /// Gets the components in an encoding; an unknown encoding leaves the outputs unchanged. Integers are the components
    /// times the type's largest value, rounded; values that do not fit, such as hues above 1, wrap.
    void get(ColorType type, float& x0, float& x1, float& x2, float& x3) const noexcept;
    void get(ColorType type, double& x0, double& x1, double& x2, double& x3) const noexcept;
    void get(ColorType type, unsigned char& x0, unsigned char& x1, unsigned char& x2, unsigned char& x3) const noexcept;
    void get(ColorType type, unsigned short& x0, unsigned short& x1, unsigned short& x2,
             unsigned short& x3) const noexcept;
    /// Gets the first three components.
    void get(ColorType type, float& x0, float& x1, float& x2) const noexcept;
    void get(ColorType type, double& x0, double& x1, double& x2) const noexcept;
    void get(ColorType type, unsigned char& x0, unsigned char& x1, unsigned char& x2) const noexcept;
    void get(ColorType type, unsigned short& x0, unsigned short& x1, unsigned short& x2) const noexcept;

    /// Sets the colour from components in an encoding; an unknown encoding changes nothing. Integers are divided by the
    /// type's largest value.
    void set(ColorType type, float x0, float x1, float x2, float x3) noexcept;
    void set(ColorType type, double x0, double x1, double x2, double x3) noexcept;
    void set(ColorType type, unsigned char x0, unsigned char x1, unsigned char x2, unsigned char x3) noexcept;
    void set(ColorType type, unsigned short x0, unsigned short x1, unsigned short x2, unsigned short x3) noexcept;

    /// The X pixel value on a visual of depth fsDepth: red in the highest bits at depth 24, in the lowest at any other.
    [[nodiscard]] std::uint32_t asXColor() const noexcept;
    /// True when r, g and b each differ by at most 0.00001. Alpha is not compared.
    /// @param tolerance  ignored: the tolerance is fixed
    [[nodiscard]] bool equivalent(const Color& other, float tolerance) const noexcept;

    /// Arithmetic on r, g and b, each result clamped to [0, 1]; NaN stays NaN. Alpha is unchanged.
    Color& operator+=(const Color& other) noexcept;
    Color& operator-=(const Color& other) noexcept;
    Color& operator*=(const Color& other) noexcept;
    Color& operator/=(const Color& other) noexcept;
    Color& operator+=(float value) noexcept;
    Color& operator-=(float value) noexcept;
    Color& operator*=(float value) noexcept;
    Color& operator/=(float value) noexcept;
    /// Bitwise exclusive or of r, g and b as 8-bit integers. Alpha is unchanged.
    Color& operator^=(const Color& other) noexcept;

    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
    float a = 1.0f;

    /// The depth, in bits, of the X visual that asXColor assumes.
    static std::int16_t fsDepth;
    /// For the host; the library does not read it.
    static std::int32_t fsTransparentIndex;

    static const Color kTransparent;
    static const Color kCtransparent;
    static const Color kCblack;
    static const Color kCblue;
    static const Color kCgreen;
    static const Color kCdarkgreen;
    static const Color kCcyan;
    static const Color kCred;
    static const Color kCmagenta;
    static const Color kCyellow;
    static const Color kCwhite;
    static const Color kCgrey;
};

/// (s / c.r, s / c.g, s / c.b), each clamped to [0, 1], with c's alpha.
[[nodiscard]] KRENDER_EXPORT Color operator/(float s, const Color& c) noexcept;

} // namespace krColor
