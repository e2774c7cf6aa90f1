#pragma once
#include <cmath>

/// A vector of three floats.
struct Vector3
{
    float x = 0;
    float y = 0;
    float z = 0;
};

[[nodiscard]] inline Vector3 operator+(const Vector3& a, const Vector3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
[[nodiscard]] inline Vector3 operator-(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
[[nodiscard]] inline Vector3 operator*(const Vector3& v, float s) { return {v.x * s, v.y * s, v.z * s}; }
[[nodiscard]] inline float dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
[[nodiscard]] inline Vector3 cross(const Vector3& a, const Vector3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
/// The vector scaled to length 1; the null vector unchanged.
[[nodiscard]] inline Vector3 normalized(const Vector3& v)
{
    const float length = std::sqrt(dot(v, v));
    return length > 0 ? v * (1 / length) : v;
}
