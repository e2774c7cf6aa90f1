#pragma once
#include "Model.h"

#include <krview/scene/Scene.h>

#include <string>
#include <vector>

/// What the scene says of a part of an object. Everything is borrowed from the scene.
struct PartLook
{
    const std::string& material;            ///< FILE or FILE:NAME
    std::vector<const InputValues*> values; ///< the first that has an input's name counts
    bool isTransparent;
};

[[nodiscard]] PartLook lookOf(const Scene& scene, const SceneObject& object, const MeshPart& part);

/// Throws an InputError for a part that the scene names and the model does not have.
void checkParts(const SceneObject& object, const Model& model);
