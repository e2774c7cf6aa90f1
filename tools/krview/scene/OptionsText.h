#pragma once
#include "Scene.h"

#include <string>

/// The scene's file and the options with which krview shows the scene as it is, for a shell. Options cannot tell of the
/// view, the places of objects and their parts, and cannot take away what the file says.
[[nodiscard]] std::string optionsText(const Scene& scene);
