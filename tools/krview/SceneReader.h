#pragma once
#include "Options.h"
#include "Scene.h"

#include <optional>

/// Reads the scene that the options name; the other options replace parts of it. Throws an InputError for errors in the
/// scene, a krTools::UsageError and a krTools::FileError.
/// @return  nothing when the scene file is not JSON, which is then printed
[[nodiscard]] std::optional<Scene> readScene(const Options& options);
