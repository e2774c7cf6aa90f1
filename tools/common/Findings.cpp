#include <common/Findings.h>

#include <algorithm>

namespace krTools
{

void Findings::add(Finding finding)
{
    fHasErrors |= finding.severity == Severity::Error;
    if (fKept.size() < kMaxKept)
        fKept.push_back(std::move(finding));
    else
        ++fNotKept;
}

void Findings::error(std::size_t position, std::string text) { add({position, Severity::Error, std::move(text)}); }

void Findings::sort()
{
    std::stable_sort(fKept.begin(), fKept.end(),
                     [](const Finding& a, const Finding& b) { return a.position < b.position; });
}

void print(std::FILE* file, const Source& source, const Findings& findings)
{
    const bool colour = wantsColour(file);
    for (const Finding& finding : findings.kept())
    {
        const Source::Place place = source.place(finding.position);
        const std::string text = format({.file = source.name(),
                                         .line = place.line,
                                         .column = place.column,
                                         .lineText = place.text,
                                         .kind = messageKind(finding.severity),
                                         .text = finding.text},
                                        colour);
        std::fputs(text.c_str(), file);
    }
    if (findings.notKept() > 0)
        std::fprintf(file, "%s: %zu more messages are not shown\n", printable(source.name()).c_str(),
                     findings.notKept());
}

} // namespace krTools
