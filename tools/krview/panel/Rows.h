#pragma once
#include <krview/material/InputForm.h>

#include <array>
#include <span>
#include <string>
#include <vector>

// The rows of the panel: a label to the left, a widget beside it, and a button at the end that takes the value back. All
// are for use within a window of ImGui's.

inline constexpr float kPanelWidth = 340; ///< pixels

/// Begins a row with its label; the widget that follows has the room that is left.
/// @param help  shown where the pointer stays on the label; may be empty
void beginRow(const std::string& label, const std::string& help = "");
/// Ends a row.
/// @param canReset  whether there is something to take back
/// @return  whether the user takes it back
bool endRow(bool canReset = false);

// Each of these returns whether the user changes the value.

/// Numbers that are dragged or typed, within the form's ends.
bool numbersWidget(const InputForm& form, std::vector<double>& numbers);
/// Red, green, blue and possibly alpha, as a picker shows them: a material that takes them makes light of them itself.
bool colourWidget(std::span<double> numbers);
/// Rows of a matrix.
bool matrixWidget(const InputForm& form, std::vector<double>& numbers);
bool choiceWidget(const InputForm& form, std::vector<double>& numbers);
bool checkBox(bool& value);
/// One of several names.
bool namesWidget(std::span<const char* const> names, std::size_t& chosen);

/// The nearest number with as few digits as a float needs, so that files and options have no more of them.
[[nodiscard]] double shortest(float number);
