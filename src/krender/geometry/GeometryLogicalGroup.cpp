#include <krender/geometry/GeometryLogicalGroup.h>

#include <krender/geometry/GeometryCustomData.h>
#include <krender/geometry/GeometryDataIndex.h>

#include <algorithm>
#include <cstring>

namespace
{

/// The first element that is not null and matches; null if none.
template <class T, class Matches>
T* findFirst(const std::vector<T*>& elements, Matches matches)
{
    const auto found = std::find_if(elements.begin(), elements.end(), [&](T* e) { return e && matches(*e); });
    return found != elements.end() ? *found : nullptr;
}

/// Calls a function on every element that is not null.
template <class T, class Function>
void forEach(const std::vector<T*>& elements, Function function)
{
    for (T* element : elements)
        if (element)
            function(*element);
}

} // namespace

GeometryLogicalGroup::GeometryLogicalGroup(const char* name, const std::vector<const GeometryData*>& data,
                                           const std::vector<const GeometryDataIndex*>& indices)
    : fName(name), fData(data), fIndices(indices)
{
}

const GeometryData* GeometryLogicalGroup::geometryDataPtr(GeometryData::DataType type, int setIndex,
                                                          bool secondary) const noexcept
{
    return findFirst(
        fData, [=](const GeometryData& stream)
        { return stream.dataType() == type && stream.setIndex == setIndex && stream.secondary() == secondary; });
}

const GeometryData* GeometryLogicalGroup::geometryDataPtr(GeometryData::DataType type, const char* name,
                                                          bool secondary) const noexcept
{
    return findFirst(fData,
                     [=](const GeometryData& stream)
                     {
                         return stream.dataType() == type && stream.secondary() == secondary &&
                                (!name || std::strcmp(stream.streamName(), name) == 0);
                     });
}

GeometryCustomData* GeometryLogicalGroup::customData(const char* name) const
{
    return findFirst(fCustomData, [name](const GeometryCustomData& attachment)
                     { return name && std::strcmp(attachment.name(), name) == 0; });
}

void GeometryLogicalGroup::appendData(const std::vector<const GeometryData*>& data,
                                      const std::vector<const GeometryDataIndex*>& indices)
{
    fIndices.insert(fIndices.end(), indices.begin(), indices.end());
    fData.insert(fData.end(), data.begin(), data.end());
}

void GeometryLogicalGroup::appendData(const GeometryData* data)
{
    fData.push_back(data);
    // A list is shared as const with those who draw it; the group is its owner and may extend it.
    if (!fIndices.empty() && fIndices.front())
        const_cast<GeometryDataIndex*>(fIndices.front())->appendData(data);
}

void GeometryLogicalGroup::appendData(GeometryCustomData* data) { fCustomData.push_back(data); }

void GeometryLogicalGroup::deleteHangers(bool dataHangers, bool indexHangers) const
{
    if (indexHangers)
        forEach(fIndices, [](const GeometryDataIndex& list) { list.deleteHanger(); });
    if (dataHangers)
        forEach(fData, [](const GeometryData& stream) { stream.deleteHanger(); });
}

void GeometryLogicalGroup::reset()
{
    // Lists first: the last reference to a list drops the hangers of its streams, which must still be there.
    const auto release = [](auto& object)
    {
        object.deleteHanger();
        object.unref();
    };
    forEach(fIndices, release);
    forEach(fData, release);
    fIndices.clear();
    fData.clear();
    forEach(fCustomData, [](GeometryCustomData& attachment) { attachment.unref(); });
    fCustomData.clear();
    fMonitorRegistry.reset();
}
