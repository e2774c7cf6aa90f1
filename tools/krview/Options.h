#pragma once
#include <optional>
#include <string>
#include <vector>

/// What the command line says. What is left out, the scene says.
struct Options
{
    std::string scene;
    std::string material; ///< FILE or FILE:NAME
    std::string shape;
    std::string stdlib;
    std::vector<std::string> libraries;
    std::vector<std::string> lights;   ///< KEY=FUNCTION
    std::vector<std::string> settings; ///< NAME=VALUE
    std::string size;                  ///< WxH
    unsigned grid = 0;
    std::string screenshot;
    unsigned frames = 0; ///< 0: until the user quits
    bool watch = false;
    bool stats = false;
};

/// Reads the command line.
/// @return  nothing when it asked for a text only, which is then printed. Throws a krTools::UsageError.
[[nodiscard]] std::optional<Options> readOptions(int argc, char** argv);
