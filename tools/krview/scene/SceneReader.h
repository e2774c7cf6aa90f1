#pragma once
#include "Scene.h"

#include <krview/Options.h>

/// Reads the scene that the options name; the other options replace parts of it. Throws an InputError for errors in the
/// scene, a krTools::UsageError and a krTools::FileError.
[[nodiscard]] Scene readScene(const Options& options);
