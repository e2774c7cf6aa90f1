#include <krender/frontend/Interface.h>

#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/InterfaceParts.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>

#include <array>
#include <memory>

namespace krFrontend
{

Value valueOf(const ConstantValue& constant)
{
    Value value;
    value.type = dataType(constant.type);
    value.text = constant.text;
    const bool isFloat = constant.type.base == BaseType::Float || constant.type.isMatrix();
    if (isFloat)
        value.floats.assign(constant.floats.begin(), constant.floats.begin() + constant.count());
    else if (constant.type.size > 0)
        value.ints.assign(constant.ints.begin(), constant.ints.begin() + constant.count());
    return value;
}

std::vector<MetadataItem> metadataOf(const ModuleContents& module, const Symbol& input)
{
    std::vector<MetadataItem> items;
    if (input.metadata != 0)
        for (const Metadata& metadata : module.tree.metadata[input.metadata - 1])
            items.push_back({std::string(module.store.names.text(metadata.item->name)), valueOf(metadata.value)});
    return items;
}

std::vector<ShaderInterface> interfaceOf(const Module& module)
{
    const ModuleContents& contents = module.contents();
    std::vector<ShaderInterface> shaders;
    for (const Function* function : contents.tree.functions)
    {
        ShaderInterface& shader = shaders.emplace_back();
        shader.kind = static_cast<ShaderKind>(function->kind);
        shader.name = contents.store.names.text(function->name);
        shader.result = dataType(function->result);
        shader.hasBody = function->body != nullptr;
        shader.range = function->range;
        for (const Symbol* argument = function->arguments; argument; argument = argument->next)
            shader.arguments.push_back({std::string(contents.store.names.text(argument->name)),
                                        dataType(argument->type), argument->kind != SymbolKind::Input,
                                        argument->frequencies, argument->value ? valueOf(*argument->value) : Value(),
                                        metadataOf(contents, *argument), argument->range});
    }
    return shaders;
}

} // namespace krFrontend
