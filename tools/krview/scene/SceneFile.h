#pragma once
#include "Keys.h"
#include "Scene.h"
#include "SceneText.h"

#include <common/SourceNames.h>

#include <optional>
#include <string>
#include <vector>

/// A light with the values of its own inputs.
struct SceneLight
{
    krTools::LightName name;
    InputValues inputs;
};

/// What a scene file says, as it says it.
struct SceneFile
{
    Scene scene;                                     ///< all that has no field of its own here
    SceneObject only;                                ///< the only object; beside others its material is theirs
    std::optional<std::vector<SceneObject>> objects; ///< nothing: there is the only one
    std::optional<std::vector<SceneLight>> lights;
};

/// The keys of a scene file.
[[nodiscard]] Keys sceneKeys(SceneFile& file);
[[nodiscard]] Keys viewKeys(Scene& scene);
[[nodiscard]] Keys backgroundKeys(Scene& scene);
[[nodiscard]] Keys environmentKeys(Environment& environment);
[[nodiscard]] Keys shadowKeys(Shadow& shadow);
[[nodiscard]] Keys lightKeys(SceneLight& light);

/// Reads a scene file. Throws an InputError.
[[nodiscard]] SceneFile readSceneFile(const SceneText& text);

/// The scene that a file tells of. Throws an InputError.
/// @param text  of the file
[[nodiscard]] Scene sceneOf(SceneFile file, const SceneText& text);

/// How a file says a scene that another file, `like`, says in its own way: with a list of objects or without, and inputs
/// of lights beside the light or beside the material.
[[nodiscard]] SceneFile sceneFileOf(Scene scene, const SceneFile& like);

/// What a file says; what goes without saying is left out. Files are named relative to the folder.
[[nodiscard]] Key::Json writtenScene(SceneFile file, const std::string& folder);
