#pragma once
#include "Scene.h"

#include <krview/Options.h>

#include <string>

/// The value that an option gives to an input: numbers with commas between them, a truth value, a name, or an object as in
/// a scene file. Throws an InputError.
/// @param place  the option, for messages
[[nodiscard]] InputValue inputOfOption(const std::string& place, const std::string& text);

/// Replaces what the options name in a scene. What is about one object is about the first. Throws an InputError and a
/// krTools::UsageError.
void applyOptions(const Options& options, Scene& scene);

/// Gives the scene the size of an option --size. Throws a krTools::UsageError.
void applySize(const std::string& text, Scene& scene);
