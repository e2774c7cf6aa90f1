#pragma once
#include <krender/frontend/SourceSet.h>

#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{

enum class Severity : std::uint8_t
{
    Error,
    Warning,
};

/// Another place that belongs to a diagnostic.
struct DiagnosticNote
{
    SourceRange range;
    std::string text;
};

/// A change that mends what was found: the range gives way to the text.
struct DiagnosticFix
{
    SourceRange range;
    std::string replacement;
};

/// One thing that is wrong with a source, or looks so.
struct Diagnostic
{
    std::string_view name; ///< of the kind, such as "unknown-name"; warnings are switched by it
    Severity severity = Severity::Error;
    SourceRange range;
    std::string text; ///< one sentence without a full stop, in the language's own terms
    std::vector<DiagnosticNote> notes;
    std::vector<DiagnosticFix> fixes; ///< made together; empty where none is sure
};

/// A kind of diagnostic, for lists and documents.
struct DiagnosticKind
{
    std::string_view name;
    Severity severity = Severity::Error;
    std::string_view text; ///< with %1, %2, ... where the source's own words stand
};

/// Every kind of diagnostic, errors first.
[[nodiscard]] KRENDER_EXPORT const std::vector<DiagnosticKind>& diagnosticKinds();

} // namespace krFrontend
