#include <krender/pixels/IBaseResource.h>

IBaseResource::~IBaseResource() = default;

bool IBaseResource::lock(LockingMode /*mode*/, bool /*wait*/) { return true; }

void IBaseResource::unlock(LockingMode /*mode*/) {}

bool IBaseResource::isLocked(LockingMode /*mode*/) const { return false; }

IBaseResource* IBaseResource::duplicate(bool /*withContents*/, bool /*shareDevice*/) { return nullptr; }

IBaseResource* IBaseResource::duplicateInternal(bool /*withContents*/) { return nullptr; }
