#include <krender/geometry/GeometryLogicalGroup.h>

#include <krender/core/Ref.h>
#include <krender/core/RefVector.h>
#include <krender/geometry/GeometryCustomData.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryMonitorRegistry.h>

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

GeometryLogicalGroup::GeometryLogicalGroup(const char* name) noexcept : fName(name) {}

GeometryLogicalGroup::GeometryLogicalGroup(const char* name, const std::vector<const GeometryData*>& data,
                                           const std::vector<const GeometryDataIndex*>& indices)
    : fName(name), fData(data), fIndices(indices)
{
}

GeometryLogicalGroup::~GeometryLogicalGroup() { reset(); }

const GeometryData* GeometryLogicalGroup::geometryDataPtr(GeometryData::DataType type, int setIndex,
                                                          bool secondary) const noexcept
{
    return findFirst(
        data(), [=](const GeometryData& stream)
        { return stream.dataType() == type && stream.setIndex == setIndex && stream.secondary() == secondary; });
}

const GeometryData* GeometryLogicalGroup::geometryDataPtr(GeometryData::DataType type, const char* name,
                                                          bool secondary) const noexcept
{
    return findFirst(data(),
                     [=](const GeometryData& stream)
                     {
                         return stream.dataType() == type && stream.secondary() == secondary &&
                                (!name || std::strcmp(stream.streamName(), name) == 0);
                     });
}

GeometryCustomData* GeometryLogicalGroup::customData(const char* name) const
{
    return findFirst(customData(), [name](const GeometryCustomData& attachment)
                     { return name && std::strcmp(attachment.name(), name) == 0; });
}

void GeometryLogicalGroup::appendData(const std::vector<const GeometryData*>& data,
                                      const std::vector<const GeometryDataIndex*>& indices)
{
    fIndices.adopt(indices);
    fData.adopt(data);
}

void GeometryLogicalGroup::appendData(const GeometryData* data)
{
    fData.append(Ref<const GeometryData>::adopt(data));
    // A list is const to those who draw it; the group owns it and may extend it.
    if (!indices().empty() && indices().front())
        const_cast<GeometryDataIndex*>(indices().front())->appendData(data);
}

void GeometryLogicalGroup::appendData(GeometryCustomData* data)
{
    fCustomData.append(Ref<GeometryCustomData>::adopt(data));
}

void GeometryLogicalGroup::deleteHangers(bool dataHangers, bool indexHangers) const
{
    if (indexHangers)
        forEach(indices(), [](const GeometryDataIndex& list) { list.deleteHanger(); });
    if (dataHangers)
        forEach(data(), [](const GeometryData& stream) { stream.deleteHanger(); });
}

void GeometryLogicalGroup::reset()
{
    // Lists first: a list that ends drops the hangers of its streams, which must still be there.
    fIndices.clear([](const GeometryDataIndex& list) { list.deleteHanger(); });
    fData.clear([](const GeometryData& stream) { stream.deleteHanger(); });
    fCustomData.clear();
    fMonitorRegistry.reset();
}
