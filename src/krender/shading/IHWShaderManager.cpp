#include <krender/shading/IHWShaderManager.h>

IHWShaderManager::~IHWShaderManager() = default;
