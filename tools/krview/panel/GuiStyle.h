#pragma once

struct ImFont;

/// Gives the current ImGui context its colours, sizes and fonts: those of the machine where it has suitable ones, else
/// ImGui's own.
void applyGuiStyle();

/// The height of a row with a widget, whichever font there is; pixels.
inline constexpr float kRowHeight = 22;

/// The font for source text, in which all characters have one width.
[[nodiscard]] ImFont* sourceFont();
