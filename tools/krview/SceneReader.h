#pragma once
#include "Options.h"
#include "Scene.h"

#include <optional>

/// Reads the scene that the options ask for, and what they say themselves, which comes before what the scene says.
/// @return  nothing when the scene file is no JSON, which is then printed. Throws an InputError for what else is wrong in
///          it, a krTools::UsageError and a krTools::FileError.
[[nodiscard]] std::optional<Scene> readScene(const Options& options);
