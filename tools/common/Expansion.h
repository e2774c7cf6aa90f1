#pragma once
#include <krender/shading/ShadingNodeSpec.h>

#include <string_view>

namespace krTools
{

/// Whether the programs of a material with so many lights can be written. An illuminance block comes once a light, and so
/// does every block within it: blocks in blocks multiply the lights by themselves, and a short source could fill the
/// memory. What is too much is printed.
/// @param program  the name of the program that asks
[[nodiscard]] bool checkExpansion(std::string_view program, const krShadingDag::ShadingNodeSpec& material,
                                  std::size_t lights);

} // namespace krTools
