#include <common/Diagnostics.h>

#include <common/PrintedMessage.h>

#include <krender/frontend/Module.h>

#include <algorithm>
#include <string>
#include <string_view>

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

/// How a message shows the kind: "name", for a warning "-Wname", as the option that switches it.
std::string shownName(const Diagnostic& diagnostic)
{
    const auto& kinds = krFrontend::diagnosticKinds();
    const bool isWarning = std::any_of(kinds.begin(), kinds.end(),
                                       [&diagnostic](const krFrontend::DiagnosticKind& kind)
                                       { return kind.name == diagnostic.name && kind.severity == Severity::Warning; });
    return (isWarning ? "-W" : "") + std::string(diagnostic.name);
}

/// What a fix does, in words, such as "insert ';'".
std::string describe(const SourceSet& sources, const DiagnosticFix& fix)
{
    const std::string old = '\'' + std::string(sources.text(fix.range)) + '\'';
    const std::string replacement = '\'' + fix.replacement + '\'';
    return fix.range.begin == fix.range.end ? "insert " + replacement
           : fix.replacement.empty()        ? "remove " + old
                                            : "write " + replacement + " instead of " + old;
}

} // namespace

std::size_t hiddenErrors(const krFrontend::Module& module)
{
    const auto& diagnostics = module.diagnostics();
    return module.errorCount() -
           static_cast<std::size_t>(std::count_if(diagnostics.begin(), diagnostics.end(),
                                                  [](const Diagnostic& diagnostic)
                                                  { return diagnostic.severity == Severity::Error; }));
}

void print(const SourceSet& sources, const Diagnostic& diagnostic, MessageOutput& output)
{
    const std::string name = shownName(diagnostic);
    PrintedMessage message = messageAt(sources, diagnostic.range, messageKind(diagnostic.severity), diagnostic.text);
    message.name = name;
    print(message, output);
    for (const DiagnosticNote& note : diagnostic.notes)
        print(sources, note, output);
    for (const DiagnosticFix& fix : diagnostic.fixes)
        print(messageAt(sources, fix.range, MessageKind::Fix, describe(sources, fix)), output);
}

void print(const SourceSet& sources, const DiagnosticNote& note, MessageOutput& output)
{
    print(messageAt(sources, note.range, MessageKind::Note, note.text), output);
}

void printHidden(const krFrontend::Module& module, MessageOutput& output)
{
    if (const std::size_t hidden = hiddenErrors(module); hidden > 0)
        printRest(module.sources().file(0).name(), hidden, "errors", output);
}

} // namespace krTools
