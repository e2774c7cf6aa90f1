#include <common/Findings.h>

#include <algorithm>

namespace krTools
{

void Findings::add(Finding finding)
{
    if (countInstead(finding.severity))
        return;
    fKeptErrors += finding.severity == Severity::Error ? 1 : 0;
    fKept.push_back(std::move(finding));
}

bool Findings::countInstead(Severity severity) noexcept
{
    const bool isFull = (severity == Severity::Error ? fKeptErrors : fKept.size() - fKeptErrors) == kMaxKept;
    fNotKept += isFull ? 1 : 0;
    return isFull;
}

void Findings::error(std::size_t position, std::string text) { add({position, Severity::Error, std::move(text)}); }

void Findings::sort()
{
    std::stable_sort(fKept.begin(), fKept.end(),
                     [](const Finding& a, const Finding& b) { return a.position < b.position; });
}

void print(const Source& source, const Findings& findings, MessageOutput& output)
{
    for (const Finding& finding : findings.kept())
    {
        const Source::Place place = source.place(finding.position);
        print({.file = source.name(),
               .line = place.line,
               .column = place.column,
               .lineText = place.text,
               .kind = messageKind(finding.severity),
               .text = finding.text},
              output);
    }
    if (findings.notKept() > 0)
        printRest(source.name(), findings.notKept(), "messages", output);
}

} // namespace krTools
