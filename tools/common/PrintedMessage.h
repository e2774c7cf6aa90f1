#pragma once
#include <common/MessageOutput.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <string_view>

namespace krTools
{

/// A message about a place in a source, with the line that it is about.
struct PrintedMessage
{
    std::string_view file;
    std::size_t line = 1;   ///< from 1
    std::size_t column = 1; ///< in bytes, from 1
    std::size_t length = 0; ///< the bytes that it is about; what goes past the line's end is not underlined
    std::string_view lineText = {};
    MessageKind kind = MessageKind::Error;
    std::string_view text = {};
    std::string_view name = {}; ///< printed in brackets; empty for none
};

/// Shows a message as "file:line:column: error: text [name]", and below it, for all but a fix, the line and the range
/// underlined.
void print(const PrintedMessage& message, MessageOutput& output = standardMessages());

/// Shows "program: error: text", for what has no place in a source.
void printError(std::string_view program, std::string_view text, MessageOutput& output = standardMessages());
/// Shows "program: note: text" likewise.
void printNote(std::string_view program, std::string_view text);
/// Shows how many messages about a file are left out.
/// @param what  "errors" or the like
void printRest(std::string_view file, std::size_t count, const char* what, MessageOutput& output);

/// Makes any bytes fit to be shown: control bytes and broken UTF-8 become \xNN, and what is long is cut.
[[nodiscard]] std::string printable(std::string_view text);

/// The text between quotes, for messages.
[[nodiscard]] std::string inQuotes(std::string_view text);

/// The shortest digits that stand for a number.
template <class Number>
[[nodiscard]] std::string digitsOf(Number number)
{
    std::array<char, 32> digits;
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

} // namespace krTools
