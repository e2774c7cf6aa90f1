#pragma once
#include <krender/shading/ShadingNodeSpec.h>

/// One light that shines on a material.
struct LightSpec
{
    /// The light function, borrowed. Null, or a function without a body, is a light that adds nothing to a program.
    const krShadingDag::ShadingNodeSpec* spec = nullptr;
    /// The light's own name. It prefixes the names of the light's uniforms, so that several lights may share a function.
    krString::CString name;
};
