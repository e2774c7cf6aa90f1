#pragma once
#include "InputNames.h"
#include "Placements.h"
#include "StageObject.h"

#include <krview/gl/DepthMap.h>
#include <krview/gl/FlatPainter.h>
#include <krview/scene/Scene.h>

#include <krender/platform/Linear.h>

#include <memory>
#include <string>
#include <vector>

/// The shadows that one light of the scene casts: a depth map of what it sees. The light has an input of type
/// sampler2DShadow, which gets the map, and one of type matrix4, which gets the matrix from the scene to the map: after
/// the division, all three components are from 0 to 1 within it. What the light sees is told by its inputs: those named
/// "position", "target" (or "axis", towards the light) and "cone" (degrees across) for a lamp, "direction" (towards the
/// light) for one far away.
class ShadowPass
{
public:
    /// Finds the light of a scene, whose values may have changed. Throws an InputError if the one that the scene names
    /// takes no depth map.
    void choose(const Scene& scene, const std::vector<ObjectMaterials>& objects);

    /// Draws the depth map, if there is a light for it and it has not been drawn since. The objects must have their
    /// device copies.
    void draw(const std::vector<StageObject>& objects, const Placements& placements, const FlatPainter& painter);

    /// Sets the light's inputs of a program that is in use.
    /// @param unit  a texture unit that is free
    void setUniforms(DrawnMaterial& material, GLint unit) const;

private:
    std::string fLight; ///< its key; empty: no light casts shadows
    unsigned fSize = 0;
    bool fIsCurrent = false;
    std::unique_ptr<DepthMap> fDepths;
    krLinear::ProjMatrix fToMap; ///< from the scene
};
