#pragma once
#include <krender/frontend/Diagnostic.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <string_view>

namespace krTools
{

using krFrontend::Severity;

enum class MessageKind
{
    Error,
    Warning,
    Note,
    Fix,
};

[[nodiscard]] constexpr MessageKind messageKind(Severity severity) noexcept
{
    return severity == Severity::Error ? MessageKind::Error : MessageKind::Warning;
}

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

/// Prints a message on standard error as "file:line:column: error: text [name]", and below it, for all but a fix, the line
/// and the range underlined. On a terminal it is in colour, unless its user has asked for plain text (NO_COLOR).
void print(const PrintedMessage& message);

/// Prints "program: error: text" on standard error, for what has no place in a source.
void printError(std::string_view program, std::string_view text);
/// Prints "program: note: text" likewise.
void printNote(std::string_view program, std::string_view text);

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
