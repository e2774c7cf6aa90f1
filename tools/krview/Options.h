#pragma once
#include "GraphicsApi.h"

#include <optional>
#include <string>
#include <vector>

/// What the command line asks for. What is left out comes from the scene.
struct Options
{
    std::string scene;
    std::string material; ///< FILE or FILE:NAME
    std::string shape;
    std::string stdlib;
    std::vector<std::string> libraries;
    std::vector<std::string> includeFolders;
    bool plain = false;
    std::vector<std::string> lights;   ///< KEY=FUNCTION or KEY=FILE:FUNCTION
    std::vector<std::string> settings; ///< NAME=VALUE
    std::string size;                  ///< WxH
    unsigned grid = 0;
    std::string screenshot; ///< ends in ".png"
    unsigned frames = 0;    ///< 0: until the user quits
    GraphicsApi api = GraphicsApi::Gl21;
    bool watch = false;
    bool stats = false;
};

/// Reads the command line. Throws a krTools::UsageError.
/// @return  nothing when it asked for the help or the version, which is then printed
[[nodiscard]] std::optional<Options> readOptions(int argc, char** argv);
