#pragma once
#include <krender/core/SharedObject.h>

#include <memory>

/// Gives up a reference.
struct Unref
{
    void operator()(const krSharedObject::SharedObject* object) const { object->unref(); }
};

/// A reference on a shared object, given up at the end.
template <class T>
using Shared = std::unique_ptr<T, Unref>;
