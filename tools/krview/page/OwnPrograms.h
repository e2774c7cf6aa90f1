#pragma once
#include <nlohmann/json_fwd.hpp>

// The programs in ESSL 3.00 that pages draw with beside those of materials, described like those.

/// Draws plain colours: the vertex inputs are a place (location 0) and a colour (1).
/// @param isOnScreen  whether places are in clip space
/// @param decodes     whether colours are codes and the frame wants light
[[nodiscard]] nlohmann::ordered_json flatProgram(bool isOnScreen, bool decodes);

/// Draws what is far away: the vertex input is a direction (location 0), the uniform "sky" a cube map.
/// @param codes  whether the cube map holds light and the frame wants codes
[[nodiscard]] nlohmann::ordered_json skyProgram(bool codes);

/// Shows the picture that was drawn, "frame", with three vertices without inputs.
/// @param codes  whether the picture is light
[[nodiscard]] nlohmann::ordered_json showingProgram(bool codes);
