#include "PartCompletion.h"

#include "DerivedNormals.h"
#include "DerivedTangents.h"
#include "EqualVertices.h"
#include "VertexVectors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace
{

/// Leaves one of the vertices that are equal in all streams, and none that no triangle has.
void weldVertices(PartArrays& part)
{
    constexpr std::array kAll{kPositions, kNormals, kTextureCoords, kTextureCoords2, kColours, kTangents};
    static_assert(kAll.size() == kStreamSlots);
    constexpr unsigned kUnused = 0xffffffff;
    const std::vector<unsigned> firsts = firstEqualVertices(part, kAll);
    std::vector<unsigned> numbers(part.vertexCount(), kUnused);
    std::vector<unsigned> sources;
    for (unsigned& entry : part.triangles)
    {
        unsigned& number = numbers[firsts[entry]];
        if (number == kUnused)
        {
            number = static_cast<unsigned>(sources.size());
            sources.push_back(firsts[entry]);
        }
        entry = number;
    }
    std::vector<unsigned> edges;
    edges.reserve(part.edges.size());
    for (std::size_t i = 0; i < part.edges.size(); i += 2)
    {
        const unsigned from = numbers[firsts[part.edges[i]]];
        const unsigned to = numbers[firsts[part.edges[i + 1]]];
        if (from != kUnused && to != kUnused)
            edges.insert(edges.end(), {from, to});
    }
    part.edges = std::move(edges);
    takeVertices(part, sources);
}

void dropFlatTriangles(PartArrays& part)
{
    std::vector<unsigned> kept;
    kept.reserve(part.triangles.size());
    for (std::size_t i = 0; i < part.triangles.size(); i += 3)
        if (const std::span corners(&part.triangles[i], 3); triangleNormal(part, corners) != krLinear::Vector())
            kept.insert(kept.end(), corners.begin(), corners.end());
    part.triangles = std::move(kept);
}

/// Names each edge once, whatever its direction and whichever of the vertices at its ends it had; without any, those of
/// the triangles.
void uniteEdges(PartArrays& part, const std::vector<unsigned>& places)
{
    std::vector<std::uint64_t> ends;
    const auto add = [&](unsigned from, unsigned to)
    {
        const auto [low, high] = std::minmax(places[from], places[to]);
        if (low != high)
            ends.push_back(std::uint64_t{low} << 32 | high);
    };
    if (part.edges.empty())
    {
        ends.reserve(part.triangles.size());
        for (std::size_t i = 0; i < part.triangles.size(); ++i)
            add(part.triangles[i], part.triangles[i % 3 == 2 ? i - 2 : i + 1]);
    }
    for (std::size_t i = 0; i < part.edges.size(); i += 2)
        add(part.edges[i], part.edges[i + 1]);
    std::sort(ends.begin(), ends.end());
    ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
    part.edges.clear();
    for (const std::uint64_t edge : ends)
        part.edges.insert(part.edges.end(), {static_cast<unsigned>(edge >> 32), static_cast<unsigned>(edge)});
}

/// Scales the directions of a stream to length 1. One that has none makes the stream useless, and it is dropped.
void normalize(std::vector<float>& values)
{
    for (std::size_t i = 0; i < values.size(); i += 3)
    {
        const krLinear::Vector direction = krLinear::Vector(values[i], values[i + 1], values[i + 2]).normalized();
        if (const double length = direction.length(); !(length > 0.5 && length < 2))
        {
            values.clear();
            return;
        }
        setVector(values, i / 3, direction);
    }
}

void dropNonNumbers(std::vector<float>& values)
{
    for (float& value : values)
        if (!std::isfinite(value))
            value = 0;
}

} // namespace

void completePart(PartArrays& part, const std::function<void(float)>& report)
{
    dropFlatTriangles(part);
    weldVertices(part);
    if (part.triangles.empty())
        return;
    report(0.3f);
    for (const StreamSlot slot : {kTextureCoords, kTextureCoords2, kColours})
        dropNonNumbers(part.values[slot]);
    for (const StreamSlot slot : {kNormals, kTangents})
        normalize(part.values[slot]);
    const std::vector<unsigned> places = firstEqualVertices(part, std::array{kPositions});
    uniteEdges(part, places);
    report(0.5f);
    if (part.values[kNormals].empty())
    {
        part.values[kTangents].clear();
        deriveNormals(part, places);
    }
    report(0.8f);
    deriveTangents(part);
}
