#include "ShapeJoiner.h"

#include "Streams.h"
#include "Vector3.h"

#include <krender/core/Ref.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalGroup.h>
#include <krender/geometry/GeometryLogicalIterator.h>
#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace
{

/// The values of the streams at one corner of a face; empty for streams that the shape does not have.
struct Corner
{
    std::array<std::vector<float>, kStreamSlots> values;

    [[nodiscard]] Vector3 at(StreamSlot slot) const
    {
        return {values[slot][0], values[slot][1], values[slot].size() > 2 ? values[slot][2] : 0.0f};
    }
};

/// A rounded position: the corners of two faces at one place may differ in their last bits.
using Place = std::array<long, 3>;

Place placeOf(const Corner& corner)
{
    constexpr float kSteps = 1 << 14; // to a unit
    const Vector3 position = corner.at(kPositions);
    return {std::lround(position.x * kSteps), std::lround(position.y * kSteps), std::lround(position.z * kSteps)};
}

/// The corners of a face in their order around it.
using Face = std::vector<Corner>;

std::size_t cornersPerFace(GeometryDataIndex::DrawPrimitiveType type)
{
    return type == GeometryDataIndex::quads ? 4 : 3;
}

/// The normal by the order of the corners: counter-clockwise seen from the front.
Vector3 faceNormal(const Face& face)
{
    const Vector3 origin = face[0].at(kPositions);
    return normalized(cross(face[1].at(kPositions) - origin, face.back().at(kPositions) - origin));
}

/// Reads the lists of a group side by side.
std::vector<Face> readFaces(const GeometryLogicalGroup& group)
{
    std::vector<Face> faces;
    for (GeometryLogicalIterator lists(&group); !lists.isDone(); lists.next())
    {
        const GeometryDataIndex& list = *lists.dataIndexPointer();
        // Iterators read 64-bit entries. Destroying this copy drops the hangers of the streams; a new shape has none.
        const auto wide = Ref<GeometryDataIndex>::adopt(new GeometryDataIndex(
            list.primitiveType(), list.count(), list.data(), list.widenedIndices().release(), nullptr, nullptr));
        const std::size_t size = cornersPerFace(list.primitiveType());
        faces.resize(list.count() / size, Face(size));
        constexpr unsigned kSets[] = {0, 1};
        for (GeometryDataIterator entry(wide.get(), kSets); !entry.isDone(); entry.next())
        {
            Corner& corner = faces[entry.position() / size][entry.position() % size];
            for (const GeometryData* stream : list.data())
                for (std::size_t slot = 0; slot < kStreamSlots; ++slot)
                    if (const StreamKind& kind = kStreamKinds[slot];
                        kind.type == stream->dataType() && kind.setIndex == stream->setIndex)
                    {
                        const float* value = (entry.*kind.value)();
                        corner.values[slot].assign(value, value + kind.components);
                    }
        }
    }
    return faces;
}

/// Reverses the positions of each face whose order contradicts its normals.
void matchPositions(std::vector<Face>& faces)
{
    for (Face& face : faces)
        if (dot(faceNormal(face), face[0].at(kNormals)) < 0)
            for (std::size_t i = 1, j = face.size() - 1; i < j; ++i, --j)
                std::swap(face[i].values[kPositions], face[j].values[kPositions]);
}

/// Calls the visitor once for each place, with all corners there and their faces.
template <class Visitor>
void forEachPlace(std::vector<Face>& faces, Visitor visit)
{
    std::map<Place, std::vector<std::pair<const Face*, Corner*>>> places;
    for (Face& face : faces)
        for (Corner& corner : face)
            places[placeOf(corner)].emplace_back(&face, &corner);
    for (auto& [place, corners] : places)
        visit(corners);
}

/// Replaces each normal by the mean normal of the faces around it, without those beyond a sharp edge.
void smoothNormals(std::vector<Face>& faces)
{
    constexpr float kEdgeCosine = 0.64f; // 50 degrees
    forEachPlace(faces,
                 [](auto& corners)
                 {
                     for (auto& [face, corner] : corners)
                     {
                         const Vector3 own = faceNormal(*face);
                         Vector3 sum;
                         for (const auto& [otherFace, other] : corners)
                             if (const Vector3 normal = faceNormal(*otherFace); dot(own, normal) > kEdgeCosine)
                                 sum = sum + normal;
                         const Vector3 mean = normalized(sum);
                         corner->values[kNormals] = {mean.x, mean.y, mean.z};
                     }
                 });
}

/// The direction in which the first texture coordinate grows on a face; where it is constant, some edge of the face.
Vector3 faceTangent(const Face& face)
{
    const auto edge = [&face](StreamSlot slot, std::size_t i) { return face[i].at(slot) - face[0].at(slot); };
    const std::size_t last = face.size() - 1;
    const Vector3 uv1 = edge(kTextureCoords, 1);
    const Vector3 uv2 = edge(kTextureCoords, last);
    const float area = uv1.x * uv2.y - uv2.x * uv1.y;
    const Vector3 tangent = edge(kPositions, 1) * (uv2.y * area) - edge(kPositions, last) * (uv1.y * area);
    return normalized(dot(tangent, tangent) > 0 ? tangent : edge(kPositions, 1));
}

/// Gives each corner a tangent: that of its face or, on a smooth surface, the mean tangent of the faces around it.
void deriveTangents(std::vector<Face>& faces, bool smooth)
{
    // Around a pole the tangents point in all directions and cancel out; there each face keeps its own.
    constexpr float kAgreement = 0.3f;
    forEachPlace(faces,
                 [smooth](auto& corners)
                 {
                     for (auto& [face, corner] : corners)
                     {
                         const Vector3 normal = corner->at(kNormals);
                         const Vector3 own = faceTangent(*face);
                         Vector3 sum;
                         float count = 0;
                         for (const auto& [otherFace, other] : corners)
                             if (smooth && dot(other->at(kNormals), normal) > 0.99f)
                             {
                                 sum = sum + faceTangent(*otherFace);
                                 ++count;
                             }
                         Vector3 tangent = dot(sum, sum) > kAgreement * count * count ? sum : own;
                         if (count == 0)
                             tangent = own;
                         tangent = normalized(tangent - normal * dot(tangent, normal));
                         corner->values[kTangents] = {tangent.x, tangent.y, tangent.z};
                     }
                 });
}

/// Collects the vertices of a group.
class VertexTable
{
public:
    /// Adds a corner, unless an equal one was added before.
    /// @return  its index
    unsigned add(const Corner& corner)
    {
        std::vector<float> key;
        for (const std::vector<float>& values : corner.values)
            key.insert(key.end(), values.begin(), values.end());
        const auto [found, isNew] = fNumbers.emplace(std::move(key), static_cast<unsigned>(fNumbers.size()));
        for (std::size_t slot = 0; isNew && slot < kStreamSlots; ++slot)
            fValues[slot].insert(fValues[slot].end(), corner.values[slot].begin(), corner.values[slot].end());
        return found->second;
    }

    [[nodiscard]] std::vector<const GeometryData*> streams() const
    {
        std::vector<const GeometryData*> streams;
        for (std::size_t slot = 0; slot < kStreamSlots; ++slot)
            if (!fValues[slot].empty())
                streams.push_back(newStream(kStreamKinds[slot], fValues[slot]));
        return streams;
    }
    [[nodiscard]] std::vector<krLinear::PointFlt> positions() const
    {
        const std::vector<float>& values = fValues[kPositions];
        std::vector<krLinear::PointFlt> points;
        for (std::size_t i = 0; i + 2 < values.size(); i += 3)
            points.emplace_back(values[i], values[i + 1], values[i + 2]);
        return points;
    }

private:
    std::map<std::vector<float>, unsigned> fNumbers;
    std::array<std::vector<float>, kStreamSlots> fValues;
};

void appendJoined(const char* name, const std::vector<Face>& faces, Geometry& joined)
{
    VertexTable vertices;
    std::vector<unsigned> triangles;
    std::vector<unsigned> edges;
    std::set<std::pair<Place, Place>> drawn; // each edge once, whatever its direction
    for (const Face& face : faces)
    {
        std::vector<unsigned> numbers;
        for (const Corner& corner : face)
            numbers.push_back(vertices.add(corner));
        for (std::size_t i = 1; i + 1 < numbers.size(); ++i)
            triangles.insert(triangles.end(), {numbers[0], numbers[i], numbers[i + 1]});
        for (std::size_t i = 0; i < numbers.size(); ++i)
        {
            const std::size_t next = (i + 1) % numbers.size();
            const std::pair<Place, Place> ends = std::minmax({placeOf(face[i]), placeOf(face[next])});
            if (drawn.insert(ends).second)
                edges.insert(edges.end(), {numbers[i], numbers[next]});
        }
    }

    const std::vector<const GeometryData*> streams = vertices.streams();
    const GeometryDataIndex* surface = newList(GeometryDataIndex::triangles, streams, triangles);
    AABoundingBox box;
    box.addPoints(vertices.positions());
    surface->setBoundingBox(box);
    joined.append(name, streams, {surface, newList(GeometryDataIndex::lines, streams, edges)});
}

} // namespace

void joinShape(const Geometry& shape, bool smooth, Geometry& joined)
{
    // Surfaces continue from group to group, as from the sides of a sphere to its caps, so all are smoothed together.
    std::vector<Face> faces;
    for (const auto& group : shape.groups())
    {
        std::vector<Face> read = readFaces(*group);
        if (group->indices().size() > 1)
            matchPositions(read);
        faces.insert(faces.end(), read.begin(), read.end());
    }
    const bool hasTangents = !faces.empty() && !faces[0][0].values[kTangents].empty();
    if (smooth)
        smoothNormals(faces);
    if (!hasTangents || smooth)
        deriveTangents(faces, smooth);
    appendJoined(shape.groups().front()->name(), faces, joined);
}
