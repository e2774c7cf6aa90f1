#pragma once
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/Syntax.h"
#include <krender/frontend/Module.h>
#include <krender/shading/ShadingAttribute.h>

namespace krFrontend
{

/// Calls the visitor with each input of that frequency which programs do not provide.
template <class Visitor>
void forEachInput(const Module& module, const Function& shader, krShadingDag::CompFreqRange frequency, Visitor visit)
{
    for (const Symbol* input = shader.arguments; input; input = input->next)
        if (input->kind == SymbolKind::Input && input->frequencies == frequency &&
            !isProvidedName(module.contents().store.names.text(input->name)))
            visit(*input);
}

} // namespace krFrontend
