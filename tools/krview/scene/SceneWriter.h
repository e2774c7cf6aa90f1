#pragma once
#include "Scene.h"

#include <string>

/// Writes a scene into a file, whole or not at all, such that reading it gives the scene again. The text of the scene's
/// own file, if it has one, is edited where it says something else: what it says already stays to the byte. Throws an
/// InputError when that text has errors or the scene has a value that no scene file may have, and a krTools::FileError.
void saveScene(const Scene& scene, const std::string& path);
