#pragma once
#include <krender/frontend/Diagnostic.h>

#include <cstddef>
#include <cstdio>
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

/// The message as "file:line:column: error: text [name]", and below it, for all but a fix, the line and the range
/// underlined.
[[nodiscard]] std::string format(const PrintedMessage& message, bool colour);

/// Makes any bytes fit to be shown: control bytes and broken UTF-8 become \xNN, and what is long is cut.
[[nodiscard]] std::string printable(std::string_view text);

/// The text between quotes, for messages.
[[nodiscard]] std::string inQuotes(std::string_view text);

/// Whether a terminal stands behind the file and its user has not asked for plain text (NO_COLOR).
[[nodiscard]] bool wantsColour(std::FILE* file);

/// Writes "program: error: text", for what has no place in a source.
void print(std::FILE* file, std::string_view program, MessageKind kind, std::string_view text);
inline void print(std::FILE* file, std::string_view program, Severity severity, std::string_view text)
{
    print(file, program, messageKind(severity), text);
}

} // namespace krTools
