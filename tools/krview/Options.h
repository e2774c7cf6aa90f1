#pragma once
#include <krview/gl/GraphicsApi.h>

#include <optional>
#include <string>
#include <vector>

/// A picture to compare the last frame with.
struct Comparison
{
    std::string picture;    ///< the file; empty: none
    unsigned tolerance = 2; ///< levels of 255 by which a pixel may differ
    double allowed = 0.1;   ///< percent of the pixels that may differ by more
    std::string difference; ///< the file that shows where they differ, ends in ".png"; empty: none
};

/// Pictures of a full turn.
struct Turntable
{
    unsigned pictures = 0; ///< 0: none are wanted
    std::string folder;
};

/// What the command line asks for. What is left out comes from the scene.
struct Options
{
    std::string scene;
    std::string material; ///< FILE or FILE:NAME
    std::string shape;
    std::string mesh; ///< the file
    std::string stdlib;
    std::vector<std::string> libraries;
    std::vector<std::string> includeFolders;
    bool plain = false;
    std::vector<std::string> lights;   ///< KEY=FUNCTION or KEY=FILE:FUNCTION
    std::vector<std::string> settings; ///< NAME=VALUE or OBJECT.NAME=VALUE
    std::string size;                  ///< WxH
    unsigned grid = 0;
    std::string page;       ///< ends in ".html"; empty: none
    std::string screenshot; ///< ends in ".png"
    Comparison comparison;
    Turntable turntable;
    unsigned frames = 0; ///< 0: until the user quits, or as many as pictures need
    GraphicsApi api = GraphicsApi::Gl21;
    bool watch = false;
    bool panel = true; ///< whether it is there at first
    bool stats = false;

    /// Whether the last frame of a run is to be saved or compared.
    [[nodiscard]] bool wantsLastFrame() const { return !screenshot.empty() || !comparison.picture.empty(); }
    /// Whether pictures are wanted, and no window.
    [[nodiscard]] bool wantsPictures() const { return wantsLastFrame() || turntable.pictures != 0; }
};

/// Reads the command line. Throws a krTools::UsageError.
/// @return  nothing when it asked for the help or the version, which is then printed
[[nodiscard]] std::optional<Options> readOptions(int argc, char** argv);
