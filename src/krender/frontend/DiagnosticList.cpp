#include "krender/frontend/private/DiagnosticList.h"

#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/SourceSet.h>

#include <algorithm>
#include <memory>
#include <string>

namespace krFrontend
{
namespace
{

std::string fill(std::string_view text, std::initializer_list<std::string_view> words)
{
    std::string filled;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const std::size_t word =
            text[i] == '%' && i + 1 < text.size() ? static_cast<std::size_t>(text[i + 1] - '1') : 9;
        if (word < words.size())
        {
            filled += *(words.begin() + word);
            ++i;
        }
        else
            filled += text[i];
    }
    return filled;
}

} // namespace

DiagnosticList::Entry& DiagnosticList::Entry::note(SourceRange range, std::string_view text)
{
    if (fList)
        fList->fKept[fIndex].diagnostic.notes.push_back({range, std::string(text)});
    return *this;
}

DiagnosticList::Entry& DiagnosticList::Entry::fix(SourceRange range, std::string_view replacement)
{
    if (fList)
        fList->fKept[fIndex].diagnostic.fixes.push_back({range, std::string(replacement)});
    return *this;
}

DiagnosticList::Entry DiagnosticList::report(Message message, SourceRange range,
                                             std::initializer_list<std::string_view> words)
{
    const DiagnosticKind& kind = messageKind(message);
    std::size_t& count = kind.severity == Severity::Error ? fErrorCount : fWarningCount;
    if (count++ >= kMostDiagnostics)
        return {nullptr, 0};
    fKept.push_back({message, {kind.name, kind.severity, range, fill(kind.text, words), {}, {}}});
    return {this, fKept.size() - 1};
}

std::vector<Diagnostic> DiagnosticList::take()
{
    std::vector<Diagnostic> diagnostics;
    for (Kept& kept : fKept)
        if (!hasErrors() || !waitsForErrors(kept.message))
            diagnostics.push_back(std::move(kept.diagnostic));
    fKept.clear();
    std::stable_sort(diagnostics.begin(), diagnostics.end(),
                     [](const Diagnostic& a, const Diagnostic& b) { return a.range.begin < b.range.begin; });
    return diagnostics;
}

} // namespace krFrontend
