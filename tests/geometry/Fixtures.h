#pragma once
#include "SharedObjects.h"

#include <krender/core/IHWMemoryObject.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <vector>

/// A hanger that counts the live ones.
class Hanger : public IHWMemoryObject
{
public:
    explicit Hanger(int& alive) : fAlive(alive) { ++fAlive; }
    ~Hanger() override { --fAlive; }

private:
    int& fAlive;
};

template <class T>
T* newArray(std::initializer_list<T> values)
{
    auto array = std::make_unique_for_overwrite<T[]>(values.size());
    std::copy(values.begin(), values.end(), array.get());
    return array.release();
}

inline GeometryData* newStream(GeometryData::DataType type, GeometryData::ElementSize components,
                               std::initializer_list<float> values, int set = 0, const char* name = "",
                               bool secondary = false)
{
    auto* stream =
        new GeometryData(name, type, GeometryData::float32, components,
                         static_cast<unsigned>(values.size()) / components, newArray(values), true, secondary);
    stream->setIndex = set;
    return stream;
}

/// A list that claims to have `count` indices.
inline GeometryDataIndex* newList(GeometryDataIndex::DrawPrimitiveType type, unsigned count,
                                  const std::vector<const GeometryData*>& streams = {})
{
    return new GeometryDataIndex(type, count, streams, nullptr, nullptr, nullptr);
}
