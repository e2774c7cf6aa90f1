#pragma once
#include "Model.h"
#include "TriangleOrder.h"

#include <krview/material/GlProgram.h>
#include <krview/material/Inputs.h>
#include <krview/material/Material.h>

#include <memory>
#include <string>
#include <vector>

/// A material that the driver has taken.
struct DrawnMaterial
{
    Material material;
    std::unique_ptr<GlProgram> program;
};

/// A part of a model with what it is drawn with.
struct Surface
{
    std::shared_ptr<DrawnMaterial> material;
    Inputs inputs;
    bool isTransparent;
    std::unique_ptr<TriangleOrder> order = {}; ///< of a transparent mesh; particles are in order themselves
};

/// An object of the scene as the stage holds it.
struct StageObject
{
    std::string name;
    std::string modelKey; ///< see Model::keyOf()
    std::shared_ptr<Model> model;
    std::vector<Surface> surfaces; ///< one for each part of the model
    bool castsShadow;
};
