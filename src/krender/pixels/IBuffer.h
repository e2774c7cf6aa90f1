#pragma once
#include <krender/Export.h>
#include <krender/pixels/IBaseResource.h>

/// A resource that holds pixels: a texture on the device, or an array in memory.
class KRENDER_EXPORT IBuffer : public IBaseResource
{
public:
    IBuffer() noexcept = default;
    ~IBuffer() override;
};
