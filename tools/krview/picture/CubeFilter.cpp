#include "CubeFilter.h"

#include "CubeMap.h"
#include "Parallel.h"
#include "Picture.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <utility>
#include <vector>

namespace
{

using Texel = CubePyramid::Texel;
using Vector = Direction<float>;

constexpr float kPi = std::numbers::pi_v<float>;

float dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vector unit(const Vector& v)
{
    const float length = std::sqrt(dot(v, v));
    return {v[0] / length, v[1] / length, v[2] / length};
}

/// Fills a cube map.
/// @param lightAround  the texel of a direction of length 1
template <class LightAround>
Ref<PixelArrayCubeMap> filled(unsigned side, const LightAround& lightAround)
{
    Ref<PixelArrayCubeMap> cube = newCube(lightFormat(), side);
    auto* const texels = static_cast<Texel*>(cube->data());
    inParallel(std::size_t{kFaces} * side,
               [&](std::size_t row)
               {
                   const auto face = static_cast<unsigned>(row / side);
                   const float t = pixelCentre<float>(row % side, side);
                   for (std::size_t column = 0; column < side; ++column)
                       texels[row * side + column] =
                           lightAround(unit(faceDirection(face, pixelCentre<float>(column, side), t)));
               });
    return cube;
}

/// Light from a direction and the solid angle that it stands for, up to a factor.
struct Ray
{
    Vector direction;
    float weight;
    Texel light;
};

/// Directions around +z with the weight and the step of the pyramid that they are read with.
struct Sample
{
    Vector direction;
    float weight;
    float coarseness;
};

/// The binary digits of a number mirrored at the point: van der Corput's sequence.
float mirroredDigits(std::uint32_t number)
{
    std::uint32_t digits = 0;
    for (int i = 0; i < 32; ++i)
        digits |= (number >> i & 1) << (31 - i);
    return static_cast<float>(digits >> 8) / (1 << 24);
}

/// Two unit vectors across a direction and each other. They change slowly everywhere but straight below, so that samples
/// around neighbouring directions leave no seam: Frisvad, "Building an orthonormal basis from a 3D unit vector without
/// normalization" (2012).
std::pair<Vector, Vector> across(const Vector& n)
{
    constexpr float kBelow = -0.9999f;
    if (n[1] < kBelow)
        return {{1, 0, 0}, {0, 0, 1}};
    const float a = 1 / (1 + n[1]);
    const float b = -n[0] * n[2] * a;
    return {{1 - n[0] * n[0] * a, -n[0], b}, {b, -n[2], 1 - n[2] * n[2] * a}};
}

/// Samples of the lobe around +z, seen from there: Walter, Marschner, Li and Torrance, "Microfacet models for refraction
/// through rough surfaces" (2007). Each is read as wide as the part of the lobe that it stands for: Colbert and Krivanek,
/// "GPU-based importance sampling" (2007).
std::vector<Sample> samplesOf(float alpha, unsigned count, unsigned side)
{
    std::vector<Sample> samples;
    const float a2 = alpha * alpha;
    const float texel = 4 * kPi / (static_cast<float>(kFaces) * static_cast<float>(side * side)); // solid angle
    for (unsigned i = 0; i < count; ++i)
    {
        const float share = (static_cast<float>(i) + 0.5f) / static_cast<float>(count);
        const float angle = 2 * kPi * mirroredDigits(i);
        const float cosine2 = (1 - share) / (1 + (a2 - 1) * share); // between the tiny mirror and +z
        const float cosine = std::sqrt(cosine2);
        const float z = 2 * cosine2 - 1;
        if (z <= 0)
            continue;
        const float radius = 2 * cosine * std::sqrt(1 - cosine2);
        const float d = cosine2 * (a2 - 1) + 1;
        const float density = a2 / (kPi * d * d) / 4; // of the mirrored direction, per solid angle
        const float part = 1 / (static_cast<float>(count) * density);
        samples.push_back({{radius * std::cos(angle), radius * std::sin(angle), z},
                           z,
                           std::max(0.0f, 0.5f * std::log2(part / texel) + 1)});
    }
    return samples;
}

} // namespace

Ref<PixelArrayCubeMap> irradianceOf(const CubePyramid& light)
{
    // So even a lobe is that coarser steps look the same.
    constexpr unsigned kSide = 16;
    // The fewer texels there are the farther apart they are: between them light changes as samplers have it.
    constexpr unsigned kRays = 2 * kSide; // along a row of a face
    const float coarseness = std::log2(static_cast<float>(std::max(light.side(), kRays)) / kRays);
    std::vector<Ray> rays;
    for (unsigned face = 0; face < kFaces; ++face)
        for (unsigned y = 0; y < kRays; ++y)
            for (unsigned x = 0; x < kRays; ++x)
            {
                const Vector towards = faceDirection(face, pixelCentre<float>(x, kRays), pixelCentre<float>(y, kRays));
                const float length2 = dot(towards, towards);
                rays.push_back({unit(towards), 1 / (length2 * std::sqrt(length2)), light.at(towards, coarseness)});
            }
    return filled(kSide,
                  [&](const Vector& normal)
                  {
                      Texel sum{};
                      float weights = 0;
                      for (const Ray& ray : rays)
                      {
                          const float weight = ray.weight * std::max(0.0f, dot(normal, ray.direction));
                          weights += weight;
                          for (std::size_t i = 0; i < sum.size(); ++i)
                              sum[i] += weight * ray.light[i];
                      }
                      for (float& component : sum)
                          component /= weights;
                      return sum;
                  });
}

bool isSharp(float blur) { return blur < 0.06f; }

Ref<PixelArrayCubeMap> mirroredOf(const CubePyramid& light, float blur)
{
    constexpr unsigned kLeastSide = 32;
    constexpr unsigned kMostSide = 256;
    constexpr unsigned kSamples = 1 << 21; // of all texels of a face
    const float alpha = std::max(blur * blur, 0.002f);
    // Enough texels for the width of the lobe.
    const unsigned side = std::clamp(std::bit_floor(static_cast<unsigned>(4 / alpha)), kLeastSide, kMostSide);
    const std::vector<Sample> samples = samplesOf(alpha, kSamples / (side * side), light.side());
    return filled(side,
                  [&](const Vector& z)
                  {
                      const auto [x, y] = across(z);
                      Texel sum{};
                      float weights = 0;
                      for (const Sample& sample : samples)
                      {
                          Vector towards;
                          for (std::size_t i = 0; i < 3; ++i)
                              towards[i] =
                                  sample.direction[0] * x[i] + sample.direction[1] * y[i] + sample.direction[2] * z[i];
                          const Texel read = light.at(towards, sample.coarseness);
                          weights += sample.weight;
                          for (std::size_t i = 0; i < sum.size(); ++i)
                              sum[i] += sample.weight * read[i];
                      }
                      for (float& component : sum)
                          component /= weights;
                      return sum;
                  });
}
