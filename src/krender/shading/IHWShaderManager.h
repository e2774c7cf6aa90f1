#pragma once
#include <krender/Export.h>

/// What a host hangs on a node spec to manage the shaders made from it; the spec deletes it through this destructor.
class KRENDER_EXPORT IHWShaderManager
{
public:
    IHWShaderManager() = default;
    IHWShaderManager(const IHWShaderManager&) = delete;
    IHWShaderManager& operator=(const IHWShaderManager&) = delete;
    virtual ~IHWShaderManager();
};
