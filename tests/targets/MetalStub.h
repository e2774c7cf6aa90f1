// Enough of the Metal language's library for a C++ compiler to read the programs in. Nothing here is ever run.
#pragma once
#define _MSC_EXTENSIONS // glm has writable components of several letters with these alone
#define GLM_FORCE_SWIZZLE
#include <glm/glm.hpp>

#define thread
#define constant const
#define fragment
#define vertex

namespace glm::detail
{
// What glm leaves out for components of several letters.
template <int N, int X, int Y, int Z, int W>
float length(const _swizzle<N, float, packed_highp, X, Y, Z, W>& v);
} // namespace glm::detail

namespace metal
{
using namespace glm;
using float2 = glm::vec2;
using float3 = glm::vec3;
using float4 = glm::vec4;
using packed_float2 = glm::vec2;
using packed_float3 = glm::vec3;
using int2 = glm::ivec2;
using int3 = glm::ivec3;
using int4 = glm::ivec4;
using bool2 = glm::bvec2;
using bool3 = glm::bvec3;
using bool4 = glm::bvec4;
using float2x2 = glm::mat2;
using float3x3 = glm::mat3;
using float4x4 = glm::mat4;
using float2x4 = glm::mat2x4;

struct sampler
{
};
template <class T, class At>
struct Texture
{
    float4 sample(sampler, At) const;
};
template <class T>
using texture1d = Texture<T, float>;
template <class T>
using texture2d = Texture<T, float2>;
template <class T>
using texture3d = Texture<T, float3>;
template <class T>
using texturecube = Texture<T, float3>;

namespace fast
{
using namespace glm;
using glm::detail::length;
using glm::length;
} // namespace fast
namespace precise
{
using namespace glm;
inline float atan2(float y, float x) { return std::atan2(y, x); }
}
template <class T>
T dfdx(T x);
template <class T>
T dfdy(T x);
template <class T>
T rsqrt(T x);
template <class T>
T select(T a, T b, bool choice);
void discard_fragment();
} // namespace metal
