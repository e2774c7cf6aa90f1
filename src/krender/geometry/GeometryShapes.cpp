#include "krender/geometry/private/GeometryShapes.h"

#include <krender/core/Ref.h>
#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace krShapes
{

namespace
{

template <class T>
std::unique_ptr<T[]> copyOf(const std::vector<T>& values)
{
    auto copy = std::make_unique_for_overwrite<T[]>(values.size());
    std::copy(values.begin(), values.end(), copy.get());
    return copy;
}

/// The objects, each with a reference for the caller.
template <class T>
std::vector<T*> handOver(std::vector<Ref<T>> objects)
{
    std::vector<T*> result(objects.size());
    std::transform(objects.begin(), objects.end(), result.begin(), [](Ref<T>& object) { return object.release(); });
    return result;
}

} // namespace

krLinear::Point onCircle(double radius, double y, double degrees) noexcept
{
    const double angle = degrees * std::numbers::pi / 180.0;
    return {radius * std::cos(angle), y, -radius * std::sin(angle)};
}

Ref<const GeometryData> Values::stream(const char* name, GeometryData::DataType type, unsigned components,
                                       int setIndex) const
{
    const auto count = static_cast<unsigned>(fValues.size()) / components;
    auto* stream =
        new GeometryData(name, type, GeometryData::float32, components, count, copyOf(fValues).release(), true, false);
    stream->setIndex = setIndex;
    return Ref<const GeometryData>::adopt(stream);
}

void Values::append(std::initializer_list<double> components)
{
    for (const double component : components)
        fValues.push_back(static_cast<float>(component));
}

Ref<const GeometryDataIndex> indexList(GeometryDataIndex::DrawPrimitiveType type, const Streams& streams,
                                       const std::vector<unsigned>& indices)
{
    std::vector<const GeometryData*> addressed;
    for (const Ref<const GeometryData>& stream : streams)
        addressed.push_back(stream.get());
    return Ref<const GeometryDataIndex>::adopt(new GeometryDataIndex(
        type, static_cast<unsigned>(indices.size()), addressed, copyOf(indices).release(), nullptr, nullptr));
}

void appendGroup(Geometry& geometry, const char* name, const Streams& streams, const IndexLists& lists)
{
    geometry.append(name, handOver(streams), handOver(lists));
}

void appendSurfaces(Geometry& geometry, const Streams& streams, const char* quadsName, const Surface& quads,
                    const char* trianglesName, const Surface& triangles)
{
    const auto append = [&](const char* name, GeometryDataIndex::DrawPrimitiveType type, const Surface& surface)
    {
        appendGroup(geometry, name, streams,
                    {indexList(type, {streams[0]}, surface.positions), indexList(type, {streams[1]}, surface.normals),
                     indexList(type, {streams[2]}, surface.textureCoords)});
    };
    append(quadsName, GeometryDataIndex::quads, quads);
    append(trianglesName, GeometryDataIndex::triangles, triangles);
}

} // namespace krShapes
