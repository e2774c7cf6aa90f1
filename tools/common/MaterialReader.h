#pragma once
#include <common/Source.h>

#include <krender/shading/ShadingNodeSpec.h>

#include <memory>
#include <string>

namespace krTools
{

/// Which function of which file is the material.
struct MaterialName
{
    std::string file;
    std::string function; ///< empty: the first that can be one
};

/// Takes FILE or FILE:NAME apart.
[[nodiscard]] MaterialName materialName(const std::string& text);

/// Reads the material of a source: the first function of the name asked for that has a body. Without a name it is the
/// first function with a body that says "material" in its header, or the first with a body when none says so. What is
/// found is printed.
/// @return  null when there is an error
[[nodiscard]] std::unique_ptr<krShadingDag::ShadingNodeSpec> readMaterial(const Source& source,
                                                                          const std::string& name);

} // namespace krTools
