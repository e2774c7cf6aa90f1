#pragma once
#include <common/Source.h>

#include <cstddef>
#include <memory>
#include <string>

namespace krTools
{

/// Names no standard library at all.
inline constexpr const char* kNoLibrary = "none";

/// Which function of which file is the material.
struct MaterialName
{
    std::string file;
    std::string function; ///< empty: the first material
};

/// Takes FILE or FILE:NAME apart.
[[nodiscard]] MaterialName materialName(const std::string& text);

/// Which function is a light, and the light's own name.
struct LightName
{
    std::string place; ///< where the user names it, for messages: "--light sun=directionalLight"
    std::string key;   ///< its own name, ahead of its uniforms' names
    std::string function;
    std::string file; ///< empty: the function is in the material's file or a library
    std::shared_ptr<const Source> source =
        {};                   ///< the file that names it, not a KRSL source; null: the command line does
    std::size_t position = 0; ///< byte index into that
};

/// Takes KEY=FUNCTION or KEY=FILE:FUNCTION of an option --light apart. Throws a UsageError.
[[nodiscard]] LightName lightName(const std::string& option);

} // namespace krTools
