#include "Looks.h"

#include <krview/scene/InputError.h>

#include <common/PrintedMessage.h>

#include <krender/frontend/NearNames.h>

#include <algorithm>

PartLook lookOf(const Scene& scene, const SceneObject& object, const MeshPart& part)
{
    PartLook look{object.look.material,
                  {&object.look.inputs, &scene.inputs},
                  object.look.isTransparent.value_or(part.isTransparent)};
    const auto own = object.parts.find(part.name);
    if (own == object.parts.end())
        return look;
    look.values.insert(look.values.begin(), &own->second.inputs);
    return {own->second.material.empty() ? object.look.material : own->second.material, look.values,
            own->second.isTransparent.value_or(look.isTransparent)};
}

void checkParts(const SceneObject& object, const Model& model)
{
    std::vector<std::string> names;
    for (const MeshPart& part : model.parts())
        names.push_back(part.name);
    for (const auto& [name, look] : object.parts)
        if (std::find(names.begin(), names.end(), name) == names.end())
            throw InputError(look.origin,
                             "the mesh has no part " + krTools::inQuotes(name) + krFrontend::didYouMean(name, names));
}
