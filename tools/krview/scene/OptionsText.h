#pragma once
#include "Scene.h"

#include <string>
#include <vector>

/// The scene's file and the options with which krview shows a scene.
struct OptionsText
{
    std::string text;  ///< for a shell
    std::string added; ///< what of it stands behind the scene's file
    /// What options cannot tell, by the keys of scene files: those of the scene, its objects and their values. Empty: krview
    /// shows the same.
    std::vector<std::string> leftOut;
};

/// Tells a scene in options, as far as there are such. Throws an InputError when the scene's file has errors.
[[nodiscard]] OptionsText optionsText(const Scene& scene);
