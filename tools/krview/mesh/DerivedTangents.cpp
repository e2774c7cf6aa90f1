#include "DerivedTangents.h"

#include "VertexVectors.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace
{

/// The part of a vector that is at right angles to a normal.
krLinear::Vector projected(const krLinear::Vector& vector, const krLinear::Vector& normal)
{
    return vector - normal * dot(vector, normal);
}

/// Some direction at right angles to a normal.
krLinear::Vector acrossTo(const krLinear::Vector& normal)
{
    // Of the two axes, one is far enough from the normal.
    const bool isAlongX = std::abs(normal.x) > 0.9;
    return projected(isAlongX ? krLinear::Vector(0, 0, -normal.x) : krLinear::Vector(1, 0, 0), normal).normalized();
}

/// How a texture lies on a triangle.
struct Layout
{
    krLinear::Vector tangent; ///< where the first coordinate grows; the null vector where the texture has no area
    bool isMirrored;
};

Layout layoutOf(const PartArrays& part, std::size_t triangle)
{
    const unsigned* corners = &part.triangles[triangle];
    const auto edge = [&](std::size_t corner)
    { return vectorAt(part.values[kPositions], corners[corner]) - vectorAt(part.values[kPositions], corners[0]); };
    const auto coordinate = [&](std::size_t corner, std::size_t axis)
    { return double{part.values[kTextureCoords][std::size_t{2} * corners[corner] + axis]}; };
    const auto grown = [&](std::size_t corner, std::size_t axis)
    { return coordinate(corner, axis) - coordinate(0, axis); };
    const double area = grown(1, 0) * grown(2, 1) - grown(2, 0) * grown(1, 1);
    if (area == 0)
        return {{}, false};
    const krLinear::Vector along = edge(1) * grown(2, 1) - edge(2) * grown(1, 1);
    return {(area < 0 ? -along : along).normalized(), area < 0};
}

/// Splits the vertices that triangles of both layouts share.
/// @param layouts  of the triangles
void splitMirrored(PartArrays& part, const std::vector<Layout>& layouts)
{
    constexpr unsigned kNone = 0xffffffff;
    constexpr unsigned char kPlain = 1;
    constexpr unsigned char kMirrored = 2;
    std::vector<unsigned char> uses(part.vertexCount());
    for (std::size_t corner = 0; corner < part.triangles.size(); ++corner)
        uses[part.triangles[corner]] |= layouts[corner / 3].isMirrored ? kMirrored : kPlain;
    std::vector<unsigned> sources(part.vertexCount());
    std::iota(sources.begin(), sources.end(), 0U);
    std::vector<unsigned> twins(part.vertexCount(), kNone);
    for (std::size_t corner = 0; corner < part.triangles.size(); ++corner)
    {
        unsigned& vertex = part.triangles[corner];
        if (!layouts[corner / 3].isMirrored || uses[vertex] != (kPlain | kMirrored))
            continue;
        if (twins[vertex] == kNone)
        {
            twins[vertex] = static_cast<unsigned>(sources.size());
            sources.push_back(vertex);
        }
        vertex = twins[vertex];
    }
    takeVertices(part, sources);
}

/// The means of the directions in which the first texture coordinate grows around each vertex, of any length.
std::vector<float> textureDirections(PartArrays& part)
{
    std::vector<Layout> layouts;
    layouts.reserve(part.triangles.size() / 3);
    for (std::size_t i = 0; i < part.triangles.size(); i += 3)
        layouts.push_back(layoutOf(part, i));
    splitMirrored(part, layouts);
    std::vector<float> sums(part.values[kNormals].size());
    for (std::size_t corner = 0; corner < part.triangles.size(); ++corner)
    {
        const unsigned vertex = part.triangles[corner];
        const krLinear::Vector normal = vectorAt(part.values[kNormals], vertex);
        const krLinear::Vector tangent = projected(layouts[corner / 3].tangent, normal).normalized();
        setVector(sums, vertex, vectorAt(sums, vertex) + tangent * cornerAngle(part, corner));
    }
    return sums;
}

} // namespace

void deriveTangents(PartArrays& part)
{
    constexpr double kNoise = 1e-4; // the length of what is left where directions cancel out
    std::vector<float>& tangents = part.values[kTangents];
    if (tangents.empty() && !part.values[kTextureCoords].empty())
        tangents = textureDirections(part);
    tangents.resize(part.values[kNormals].size());
    for (std::size_t vertex = 0; vertex < part.vertexCount(); ++vertex)
    {
        const krLinear::Vector normal = vectorAt(part.values[kNormals], vertex);
        const krLinear::Vector across = projected(vectorAt(tangents, vertex), normal);
        setVector(tangents, vertex, across.length() > kNoise ? across.normalized() : acrossTo(normal));
    }
}
