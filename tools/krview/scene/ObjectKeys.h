#pragma once
#include "Keys.h"
#include "Scene.h"

#include <optional>
#include <vector>

/// The keys that tell what an object is and how it looks, but for its inputs: of each of the "objects", and of a scene
/// that has no such list and one object.
[[nodiscard]] Keys shapeKeys(SceneObject& object);

/// The keys of each of the "objects".
[[nodiscard]] Keys objectKeys(SceneObject& object);

/// The keys of what looks different in an object: each of its "parts".
[[nodiscard]] Keys partKeys(Look& look);

/// The list of objects. Those without a name get one; those without a material have none.
[[nodiscard]] Key objectsKey(std::optional<std::vector<SceneObject>>& objects);
