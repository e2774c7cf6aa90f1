#pragma once
#include "Model.h"

#include <krview/material/Material.h>
#include <krview/scene/Scene.h>

#include <vector>

/// The materials of the parts of a model, in their order; borrowed.
struct ObjectMaterials
{
    const Model* model;
    std::vector<const Material*> materials;
};

/// Throws an InputError for a value in the scene that no material or light has an input for.
/// @param objects  those of the scene, in order
void checkInputNames(const Scene& scene, const std::vector<ObjectMaterials>& objects);

/// Takes out of a scene the optional values that no input takes.
/// @param objects  those of the scene, in order
void dropUnusedInputs(Scene& scene, const std::vector<ObjectMaterials>& objects);
