#pragma once
#include <krender/core/SharedObject.h>

#include <memory>

/// Gives up a reference at the end of a scope.
struct Unref
{
    void operator()(const krSharedObject::SharedObject* object) const { object->unref(); }
};
template <class T>
using Held = std::unique_ptr<T, Unref>;

inline int references(const krSharedObject::SharedObject& object)
{
    object.ref();
    return object.unref();
}
