#include "Streams.h"

#include <algorithm>
#include <memory>

std::vector<std::string> streamNames()
{
    std::vector<std::string> names;
    names.reserve(kStreamKinds.size());
    for (const StreamKind& kind : kStreamKinds)
        names.emplace_back(kind.name);
    return names;
}

const GeometryData* findStream(const Groups& groups, const std::string& name)
{
    const auto* const kind =
        std::find_if(kStreamKinds.begin(), kStreamKinds.end(), [&name](const StreamKind& k) { return k.name == name; });
    if (kind == kStreamKinds.end())
        return nullptr;
    for (const GeometryLogicalGroup* group : groups)
        if (const GeometryData* stream = group->geometryDataPtr(kind->type, kind->setIndex, false))
            return stream;
    return nullptr;
}

const GeometryDataIndex* findList(const Groups& groups, GeometryDataIndex::DrawPrimitiveType type)
{
    for (const GeometryLogicalGroup* group : groups)
        for (const GeometryDataIndex* list : group->indices())
            if (list->primitiveType() == type)
                return list;
    return nullptr;
}

const GeometryData* newStream(const StreamKind& kind, const std::vector<float>& values)
{
    auto copy = std::make_unique_for_overwrite<float[]>(values.size());
    std::copy(values.begin(), values.end(), copy.get());
    const auto count = static_cast<unsigned>(values.size()) / kind.components;
    auto* stream = new GeometryData(kind.name, kind.type, GeometryData::float32, kind.components, count, copy.release(),
                                    true, false);
    stream->setIndex = kind.setIndex;
    return stream;
}

const GeometryDataIndex* newList(GeometryDataIndex::DrawPrimitiveType type,
                                 const std::vector<const GeometryData*>& streams, const std::vector<unsigned>& entries)
{
    auto copy = std::make_unique_for_overwrite<unsigned[]>(entries.size());
    std::copy(entries.begin(), entries.end(), copy.get());
    return new GeometryDataIndex(type, static_cast<unsigned>(entries.size()), streams, copy.release(), nullptr,
                                 nullptr);
}
