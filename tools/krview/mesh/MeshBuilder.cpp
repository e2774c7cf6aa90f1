#include "MeshBuilder.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <algorithm>
#include <cstddef>

namespace
{

/// The box around the vertices of the triangles; others are not seen.
AABoundingBox boundsOf(const PartArrays& part)
{
    std::vector<krLinear::PointFlt> points;
    points.reserve(part.triangles.size());
    for (const unsigned vertex : part.triangles)
    {
        const float* position = &part.values[kPositions][std::size_t{3} * vertex];
        points.emplace_back(position[0], position[1], position[2]);
    }
    AABoundingBox box;
    box.addPoints(points);
    return box;
}

} // namespace

std::unique_ptr<Mesh> buildMesh(const std::vector<PartArrays>& parts)
{
    auto mesh = std::make_unique<Mesh>();
    // The groups borrow their names, so all stand where they stay before the first group is made.
    for (const PartArrays& part : parts)
        mesh->parts.push_back({part.name, part.isTransparent});
    for (std::size_t i = 0; i < parts.size(); ++i)
    {
        std::vector<const GeometryData*> streams;
        for (std::size_t slot = 0; slot < kStreamSlots; ++slot)
            if (!parts[i].values[slot].empty())
                streams.push_back(newStream(kStreamKinds[slot], parts[i].values[slot]));
        const GeometryDataIndex* surface = newList(GeometryDataIndex::triangles, streams, parts[i].triangles);
        surface->setBoundingBox(boundsOf(parts[i]));
        mesh->bounds += surface->boundingBox();
        mesh->geometry.append(mesh->parts[i].name.c_str(), streams,
                              {surface, newList(GeometryDataIndex::lines, streams, parts[i].edges)});
    }
    return mesh;
}
