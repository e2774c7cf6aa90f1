#include <krender/core/IHWMemoryObject.h>

constinit std::uint32_t IHWMemoryObject::fsMemoryUsage = 0;

IHWMemoryObject::~IHWMemoryObject() = default;
