#include <common/Diagnostics.h>

#include <algorithm>

using krFrontend::Diagnostic;
using krFrontend::DiagnosticFix;
using krFrontend::DiagnosticNote;
using krFrontend::SourceLocation;
using krFrontend::SourceRange;
using krFrontend::SourceSet;

namespace krTools
{

namespace
{

PrintedMessage messageAt(const SourceSet& sources, SourceRange range, MessageKind kind, std::string_view text)
{
    const krFrontend::SourceFile& file = sources.fileAt(range.begin);
    const SourceLocation place = file.location(range.begin);
    return {.file = place.file,
            .line = place.line,
            .column = place.column,
            .length = range.end - range.begin,
            .lineText = file.line(place.line),
            .kind = kind,
            .text = text};
}

} // namespace

std::string shownName(const Diagnostic& diagnostic)
{
    const auto& kinds = krFrontend::diagnosticKinds();
    const bool isWarning = std::any_of(kinds.begin(), kinds.end(),
                                       [&diagnostic](const krFrontend::DiagnosticKind& kind)
                                       { return kind.name == diagnostic.name && kind.severity == Severity::Warning; });
    return (isWarning ? "-W" : "") + std::string(diagnostic.name);
}

std::string describe(const SourceSet& sources, const DiagnosticFix& fix)
{
    const std::string old = '\'' + std::string(sources.text(fix.range)) + '\'';
    const std::string replacement = '\'' + fix.replacement + '\'';
    return fix.range.begin == fix.range.end ? "insert " + replacement
           : fix.replacement.empty()        ? "remove " + old
                                            : "write " + replacement + " instead of " + old;
}

std::string format(const SourceSet& sources, const Diagnostic& diagnostic, bool colour)
{
    const std::string name = shownName(diagnostic);
    PrintedMessage message = messageAt(sources, diagnostic.range, messageKind(diagnostic.severity), diagnostic.text);
    message.name = name;
    std::string text = format(message, colour);
    for (const DiagnosticNote& note : diagnostic.notes)
        text += format(sources, note, colour);
    for (const DiagnosticFix& fix : diagnostic.fixes)
        text += format(messageAt(sources, fix.range, MessageKind::Fix, describe(sources, fix)), colour);
    return text;
}

std::string format(const SourceSet& sources, const DiagnosticNote& note, bool colour)
{
    return format(messageAt(sources, note.range, MessageKind::Note, note.text), colour);
}

std::size_t hiddenErrors(const krFrontend::Module& module)
{
    const auto& diagnostics = module.diagnostics();
    return module.errorCount() -
           static_cast<std::size_t>(std::count_if(diagnostics.begin(), diagnostics.end(),
                                                  [](const Diagnostic& diagnostic)
                                                  { return diagnostic.severity == Severity::Error; }));
}

void print(std::FILE* file, const krFrontend::Module& module)
{
    const bool colour = wantsColour(file);
    for (const Diagnostic& diagnostic : module.diagnostics())
        std::fputs(format(module.sources(), diagnostic, colour).c_str(), file);
    if (const std::size_t hidden = hiddenErrors(module); hidden > 0)
        std::fprintf(file, "%s: %zu more errors are not shown\n", printable(module.sources().file(0).name()).c_str(),
                     hidden);
}

} // namespace krTools
