#pragma once
#include <krender/core/IHWMemoryObject.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

/// An object that counts its live instances.
template <class Base>
class Counted : public Base
{
public:
    template <class... Arguments>
    explicit Counted(int& alive, Arguments&&... arguments) : Base(std::forward<Arguments>(arguments)...), fAlive(alive)
    {
        ++fAlive;
    }
    ~Counted() override { --fAlive; }

private:
    int& fAlive;
};
using Hanger = Counted<IHWMemoryObject>;

/// Gives up a reference at the end of a scope.
struct Unref
{
    void operator()(const krSharedObject::SharedObject* object) const { object->unref(); }
};
template <class T>
using Held = std::unique_ptr<T, Unref>;

template <class T>
T* newArray(std::initializer_list<T> values)
{
    auto array = std::make_unique_for_overwrite<T[]>(values.size());
    std::copy(values.begin(), values.end(), array.get());
    return array.release();
}

inline GeometryData* newStream(GeometryData::DataType type, GeometryData::ElementSize components,
                               std::initializer_list<float> values)
{
    return new GeometryData("", type, GeometryData::float32, components,
                            static_cast<unsigned>(values.size()) / components, newArray(values), true, false);
}

/// A list that claims to have `count` indices.
inline GeometryDataIndex* newList(GeometryDataIndex::DrawPrimitiveType type, unsigned count,
                                  const std::vector<const GeometryData*>& streams = {})
{
    return new GeometryDataIndex(type, count, streams, nullptr, nullptr, nullptr);
}
