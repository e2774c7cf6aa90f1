#include "DerivedNormals.h"

#include "Vector3.h"
#include "VertexVectors.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <span>
#include <tuple>
#include <utility>

namespace
{

constexpr float kCreaseCosine = 0.70710678f; // 45 degrees

/// The corners of the triangles at each place.
class CornersByPlace
{
public:
    CornersByPlace(const std::vector<unsigned>& triangles, const std::vector<unsigned>& places)
        : fEnds(places.size() + 1), fCorners(triangles.size())
    {
        for (const unsigned vertex : triangles)
            ++fEnds[places[vertex] + 1];
        std::partial_sum(fEnds.begin(), fEnds.end(), fEnds.begin());
        std::vector<std::size_t> next(fEnds.begin(), fEnds.end() - 1);
        for (std::size_t corner = 0; corner < triangles.size(); ++corner)
            fCorners[next[places[triangles[corner]]]++] = static_cast<unsigned>(corner);
    }

    [[nodiscard]] std::size_t placeCount() const noexcept { return fEnds.size() - 1; }
    [[nodiscard]] std::span<const unsigned> at(std::size_t place) const
    {
        return {fCorners.data() + fEnds[place], fEnds[place + 1] - fEnds[place]};
    }

private:
    std::vector<std::size_t> fEnds;
    std::vector<unsigned> fCorners;
};

/// Finds, place by place, which triangles there share a normal.
class SmoothGroups
{
public:
    SmoothGroups(const PartArrays& part, const std::vector<unsigned>& places) : fPart(part), fPlaces(places)
    {
        for (std::size_t i = 0; i < part.triangles.size(); i += 3)
        {
            const krLinear::Vector normal = triangleNormal(part, std::span(part.triangles).subspan(i, 3));
            fNormals.push_back(
                {static_cast<float>(normal.x), static_cast<float>(normal.y), static_cast<float>(normal.z)});
        }
    }

    /// Calls a visitor with the vertex, the normal and the corners of each new vertex at a place.
    /// @param corners  all of one place
    template <class Visitor>
    void forEachVertex(std::span<const unsigned> corners, Visitor visit)
    {
        join(corners);
        fSums.assign(corners.size(), {});
        fOrder.clear();
        for (unsigned i = 0; i < corners.size(); ++i)
        {
            const unsigned group = groupOf(i);
            fSums[group] = fSums[group] + normalAt(corners[i]) * static_cast<float>(cornerAngle(fPart, corners[i]));
            fOrder.emplace_back(group, fPart.triangles[corners[i]], corners[i]);
        }
        std::sort(fOrder.begin(), fOrder.end());
        for (std::size_t i = 0; i < fOrder.size(); ++i)
        {
            const auto& [group, vertex, corner] = fOrder[i];
            const bool isNew =
                i == 0 || std::tie(group, vertex) != std::tie(std::get<0>(fOrder[i - 1]), std::get<1>(fOrder[i - 1]));
            const Vector3 mean = normalized(fSums[group]);
            visit(isNew, vertex, dot(mean, mean) > 0 ? mean : normalAt(corner), corner);
        }
    }

private:
    /// Joins the corners whose triangles meet in an edge that is no crease.
    void join(std::span<const unsigned> corners)
    {
        fParents.resize(corners.size());
        std::iota(fParents.begin(), fParents.end(), 0U);
        fSpokes.clear();
        for (unsigned i = 0; i < corners.size(); ++i)
            for (const std::size_t other : otherCorners(corners[i]))
                fSpokes.emplace_back(fPlaces[fPart.triangles[other]], i);
        std::sort(fSpokes.begin(), fSpokes.end());
        for (std::size_t i = 1; i < fSpokes.size(); ++i)
        {
            const auto [end, first] = fSpokes[i - 1];
            const auto [otherEnd, second] = fSpokes[i];
            if (end == otherEnd && dot(normalAt(corners[first]), normalAt(corners[second])) > kCreaseCosine)
                fParents[groupOf(second)] = groupOf(first);
        }
    }

    unsigned groupOf(unsigned corner)
    {
        while (fParents[corner] != corner)
            corner = fParents[corner] = fParents[fParents[corner]];
        return corner;
    }

    [[nodiscard]] const Vector3& normalAt(unsigned corner) const { return fNormals[corner / 3]; }

    const PartArrays& fPart;
    const std::vector<unsigned>& fPlaces;
    std::vector<Vector3> fNormals; ///< of the triangles
    // Of the place that is looked at; corners are counted there.
    std::vector<unsigned> fParents;
    std::vector<std::pair<unsigned, unsigned>>
        fSpokes;                ///< the place at an edge's other end, and a corner with the edge
    std::vector<Vector3> fSums; ///< by group
    std::vector<std::tuple<unsigned, unsigned, unsigned>> fOrder; ///< group, vertex, corner of the part
};

} // namespace

void deriveNormals(PartArrays& part, const std::vector<unsigned>& places)
{
    const CornersByPlace corners(part.triangles, places);
    SmoothGroups groups(part, places);
    std::vector<unsigned> sources;
    std::vector<float> normals;
    std::vector<unsigned> triangles(part.triangles.size());
    std::vector<unsigned> atPlaces(corners.placeCount()); ///< of each place a new vertex
    for (std::size_t place = 0; place < corners.placeCount(); ++place)
        groups.forEachVertex(corners.at(place),
                             [&](bool isNew, unsigned vertex, const Vector3& normal, unsigned corner)
                             {
                                 if (isNew)
                                 {
                                     sources.push_back(vertex);
                                     normals.insert(normals.end(), {normal.x, normal.y, normal.z});
                                 }
                                 triangles[corner] = static_cast<unsigned>(sources.size() - 1);
                                 atPlaces[place] = triangles[corner];
                             });
    takeVertices(part, sources);
    part.values[kNormals] = std::move(normals);
    part.triangles = std::move(triangles);
    for (unsigned& end : part.edges)
        end = atPlaces[end];
}
