#pragma once
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryDataIterator.h>
#include <krender/geometry/GeometryLogicalGroup.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

/// A kind of stream that shapes have.
struct StreamKind
{
    const char* name; ///< also of the stream itself
    GeometryData::DataType type;
    int setIndex;
    unsigned components;
    float* (GeometryDataIterator::*value)() const noexcept; ///< the iterator's accessor for it
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

/// The groups that a surface is made of, borrowed.
using Groups = std::vector<GeometryLogicalGroup*>;

/// The first stream of that kind in the groups, borrowed; null when there is none.
/// @param name  of a kind of stream
[[nodiscard]] const GeometryData* findStream(const Groups& groups, const std::string& name);

/// The first list of that type in the groups, borrowed; null when there is none.
[[nodiscard]] const GeometryDataIndex* findList(const Groups& groups, GeometryDataIndex::DrawPrimitiveType type);

/// Makes a list with a copy of the entries. The caller owns its one reference.
/// @param streams  the streams that the entries index; borrowed for the life of the list
[[nodiscard]] const GeometryDataIndex* newList(GeometryDataIndex::DrawPrimitiveType type,
                                               const std::vector<const GeometryData*>& streams,
                                               const std::vector<unsigned>& entries);

/// Makes a stream with a copy of the values. The caller owns its one reference.
[[nodiscard]] const GeometryData* newStream(const StreamKind& kind, const std::vector<float>& values);
