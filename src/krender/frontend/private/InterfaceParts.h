#pragma once
#include "krender/frontend/private/ModuleContents.h"
#include <krender/frontend/Interface.h>

namespace krFrontend
{

[[nodiscard]] Value valueOf(const ConstantValue& constant);
[[nodiscard]] std::vector<MetadataItem> metadataOf(const ModuleContents& module, const Symbol& input);

} // namespace krFrontend
