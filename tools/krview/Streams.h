#pragma once
#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIterator.h>

#include <array>
#include <string>
#include <vector>

/// One kind of stream that shapes have here.
struct StreamKind
{
    const char* name; ///< also the stream's own
    GeometryData::DataType type;
    int setIndex;
    unsigned components;
    float* (GeometryDataIterator::*value)() const noexcept; ///< how an iterator hands it out
};

enum StreamSlot : std::size_t
{
    kPositions,
    kNormals,
    kTextureCoords,
    kTextureCoords2,
    kColours,
    kTangents,
    kStreamSlots,
};

inline constexpr std::array<StreamKind, kStreamSlots> kStreamKinds{{
    {"position", GeometryData::vertex, 0, 3, &GeometryDataIterator::vertex},
    {"normal", GeometryData::normal, 0, 3, &GeometryDataIterator::normal},
    {"textureCoord", GeometryData::textureCoord, 0, 2, &GeometryDataIterator::textureCoord},
    {"textureCoord2", GeometryData::textureCoord, 1, 2, &GeometryDataIterator::textureCoord2},
    {"color", GeometryData::color, 0, 4, &GeometryDataIterator::color},
    {"tangent", GeometryData::tangent, 0, 3, &GeometryDataIterator::tangent},
}};

/// The names of all kinds.
[[nodiscard]] std::vector<std::string> streamNames();

/// The stream of that name in any of the groups; null when there is none.
[[nodiscard]] const GeometryData* findStream(const Geometry& geometry, const std::string& name);

/// The first list of that type in any of the groups; null when there is none.
[[nodiscard]] const GeometryDataIndex* findList(const Geometry& geometry, GeometryDataIndex::DrawPrimitiveType type);

/// A list that owns a copy of the entries and holds one reference.
/// @param streams  what the entries address, borrowed for the list's life
[[nodiscard]] const GeometryDataIndex* newList(GeometryDataIndex::DrawPrimitiveType type,
                                               const std::vector<const GeometryData*>& streams,
                                               const std::vector<unsigned>& entries);

/// A stream that owns a copy of the values and holds one reference.
[[nodiscard]] const GeometryData* newStream(const StreamKind& kind, const std::vector<float>& values);
