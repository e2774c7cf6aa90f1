#pragma once
#include "SceneText.h"

#include <nlohmann/json.hpp>

#include <string>

/// Changes a text of JSON so that it says something else, and leaves the bytes of all that it says already as they are.
/// What is new takes on the layout of what stands around it. A text instead of an object is short for an object that has
/// it as its "picture". Items of a list are the same where they have the same "key" or "name", or are equal.
/// @param before  what the text says; members that neither `before` nor `after` has stay in the text
[[nodiscard]] std::string editedText(const SceneText& text, const nlohmann::ordered_json& before,
                                     const nlohmann::ordered_json& after);

/// A text that says this, laid out for people, with a line end behind it.
[[nodiscard]] std::string freshText(const nlohmann::ordered_json& value);

/// The same in one line and without a line end.
[[nodiscard]] std::string flatText(const nlohmann::ordered_json& value);
