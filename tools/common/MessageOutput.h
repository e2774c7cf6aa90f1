#pragma once
#include <krender/frontend/Diagnostic.h>

#include <string>

namespace krTools
{

using krFrontend::Severity;

enum class MessageKind
{
    Error,
    Warning,
    Note,
    Fix,
    Rest, ///< how much more there is
};

[[nodiscard]] constexpr MessageKind messageKind(Severity severity) noexcept
{
    return severity == Severity::Error ? MessageKind::Error : MessageKind::Warning;
}

/// What a kind is called in messages: "error: ", nothing for the rest.
[[nodiscard]] const char* messageWord(MessageKind kind) noexcept;

/// A message as it is shown. Every text is fit for that: it holds neither control bytes nor broken UTF-8.
struct ShownMessage
{
    MessageKind kind = MessageKind::Error;
    bool hasPlace = false;      ///< whether it is about a place in a source
    std::string origin;         ///< "file:line:column"; without a place the file or program that it is about
    std::string text;           ///< with the message's name in brackets, if it has one
    std::string line = {};      ///< what the source has there; empty for none, as is the underline then
    std::string blanks = {};    ///< as wide as the line up to the underline
    std::string underline = {}; ///< "^~~~"
};

/// Takes messages where they are shown: prints them on standard error, and may keep them.
class MessageOutput
{
public:
    virtual ~MessageOutput() = default;

    /// Prints "origin: error: text", and below it the line and the underline. On a terminal it is in colour, unless its
    /// user has asked for plain text (NO_COLOR).
    virtual void show(const ShownMessage& message);
};

/// Prints, and does no more.
[[nodiscard]] MessageOutput& standardMessages();

} // namespace krTools
