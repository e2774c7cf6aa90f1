#pragma once
#include "krender/frontend/private/Message.h"
#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/SourceSet.h>

#include <initializer_list>
#include <string_view>
#include <vector>

namespace krFrontend
{

/// Collects what is found in a source, up to a limit; what comes after is counted.
class DiagnosticList
{
public:
    /// What a report may be followed by: report(...).note(...).fix(...).
    class Entry
    {
    public:
        Entry(DiagnosticList* list, std::size_t index) noexcept : fList(list), fIndex(index) {}
        Entry& note(SourceRange range, std::string_view text);
        Entry& fix(SourceRange range, std::string_view replacement);

    private:
        DiagnosticList* fList; // null past the limit
        std::size_t fIndex;
    };

    /// @param words  what stands in the text for %1, %2, ...
    Entry report(Message message, SourceRange range, std::initializer_list<std::string_view> words = {});

    [[nodiscard]] bool hasErrors() const noexcept { return fErrorCount != 0; }
    [[nodiscard]] std::size_t errorCount() const noexcept { return fErrorCount; }
    [[nodiscard]] std::size_t warningCount() const noexcept { return fWarningCount; }
    /// In the order of their places. Warnings that an error may be behind are left out where there are errors.
    [[nodiscard]] std::vector<Diagnostic> take();

private:
    struct Kept
    {
        Message message;
        Diagnostic diagnostic;
    };

    std::vector<Kept> fKept;
    std::size_t fErrorCount = 0;
    std::size_t fWarningCount = 0;
};

/// The most errors, and the most warnings, that are kept.
inline constexpr std::size_t kMostDiagnostics = 100;

} // namespace krFrontend
