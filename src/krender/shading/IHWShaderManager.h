#pragma once
#include <krender/Export.h>

/// Base of the objects that a host attaches to a node spec to manage the shaders made from it. The spec owns its manager.
class KRENDER_EXPORT IHWShaderManager
{
public:
    IHWShaderManager() = default;
    IHWShaderManager(const IHWShaderManager&) = delete;
    IHWShaderManager& operator=(const IHWShaderManager&) = delete;
    virtual ~IHWShaderManager();
};
