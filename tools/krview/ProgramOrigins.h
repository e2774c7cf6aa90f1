#pragma once
#include "Material.h"

#include <cstddef>
#include <optional>

/// A place in a source.
struct Origin
{
    const krTools::Source* source;
    std::size_t position;
};

/// Where in the material's or a light's source a line of a program came from.
/// @param program  one of the material's programs
/// @param line     from 1
/// @return  nothing for a line that the generator made up
[[nodiscard]] std::optional<Origin> findOrigin(const Material& material, const krTools::Source& program,
                                               std::size_t line);
