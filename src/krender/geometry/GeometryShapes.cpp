#include "krender/geometry/private/GeometryShapes.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace krShapes
{

krLinear::Point onCircle(double radius, double y, double degrees) noexcept
{
    const double angle = degrees * std::numbers::pi / 180.0;
    return {radius * std::cos(angle), y, -radius * std::sin(angle)};
}

const GeometryData* Values::stream(const char* name, GeometryData::DataType type, unsigned components,
                                   int setIndex) const
{
    auto values = std::make_unique_for_overwrite<float[]>(fValues.size());
    std::copy(fValues.begin(), fValues.end(), values.get());
    const auto count = static_cast<unsigned>(fValues.size()) / components;
    auto* stream =
        new GeometryData(name, type, GeometryData::float32, components, count, values.release(), true, false);
    stream->setIndex = setIndex;
    return stream;
}

void Values::append(std::initializer_list<double> components)
{
    for (const double component : components)
        fValues.push_back(static_cast<float>(component));
}

const GeometryDataIndex* indexList(GeometryDataIndex::DrawPrimitiveType type,
                                   const std::vector<const GeometryData*>& streams,
                                   const std::vector<unsigned>& indices)
{
    auto entries = std::make_unique_for_overwrite<unsigned[]>(indices.size());
    std::copy(indices.begin(), indices.end(), entries.get());
    const auto count = static_cast<unsigned>(indices.size());
    return new GeometryDataIndex(type, count, streams, entries.release(), nullptr, nullptr);
}

void appendSurfaces(Geometry& geometry, const std::vector<const GeometryData*>& streams, const char* quadsName,
                    const Surface& quads, const char* trianglesName, const Surface& triangles)
{
    const auto append = [&](const char* name, GeometryDataIndex::DrawPrimitiveType type, const Surface& surface)
    {
        geometry.append(name, streams,
                        {indexList(type, {streams[0]}, surface.positions),
                         indexList(type, {streams[1]}, surface.normals),
                         indexList(type, {streams[2]}, surface.textureCoords)});
    };
    // Each group gives up a reference on every stream.
    for (const GeometryData* stream : streams)
        stream->ref();
    append(quadsName, GeometryDataIndex::quads, quads);
    append(trianglesName, GeometryDataIndex::triangles, triangles);
}

} // namespace krShapes
