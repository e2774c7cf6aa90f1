#pragma once
#include <krender/platform/String.h>
#include <krender/shading/ShadingNodeSpec.h>

/// One light that shines on a material.
struct LightSpec
{
    /// The light function, borrowed. A light whose function is null or has no body adds nothing to a program.
    const krShadingDag::ShadingNodeSpec* spec = nullptr;
    /// The light's own name, a prefix of its uniforms' names, so that several lights may have the same function.
    krString::CString name;
};
