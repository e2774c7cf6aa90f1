#include "Report.h"

#include <common/Diagnostics.h>
#include <common/StandardOutput.h>

#include <krender/frontend/PlainReading.h>

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <algorithm>
#include <utility>
#include <vector>

using krFrontend::Diagnostic;
using krFrontend::Severity;
using krFrontend::SourceRange;
using krFrontend::SourceSet;
using nlohmann::ordered_json;

namespace
{

const char* severityName(Severity severity) { return severity == Severity::Error ? "error" : "warning"; }

constexpr const char* kNote = "note";

ordered_json jsonOf(const SourceSet& sources, SourceRange range)
{
    const krFrontend::SourceFile& file = sources.fileAt(range.begin);
    const krFrontend::SourceLocation begin = file.location(range.begin);
    const krFrontend::SourceLocation end = file.location(range.end);
    return {{"file", file.name()},
            {"line", begin.line},
            {"column", begin.column},
            {"endLine", end.line},
            {"endColumn", end.column}};
}

ordered_json jsonOf(const SourceSet& sources, const Diagnostic& diagnostic, const char* severity)
{
    ordered_json notes = ordered_json::array();
    for (const krFrontend::DiagnosticNote& note : diagnostic.notes)
    {
        notes.push_back(jsonOf(sources, note.range));
        notes.back()["message"] = note.text;
    }
    ordered_json fixes = ordered_json::array();
    for (const krFrontend::DiagnosticFix& fix : diagnostic.fixes)
    {
        fixes.push_back(jsonOf(sources, fix.range));
        fixes.back()["replacement"] = fix.replacement;
    }
    ordered_json json = jsonOf(sources, diagnostic.range);
    json["severity"] = severity;
    json["name"] = diagnostic.name.empty() ? ordered_json() : ordered_json(diagnostic.name);
    json["message"] = diagnostic.text;
    json["notes"] = std::move(notes);
    json["fixes"] = std::move(fixes);
    return json;
}

/// A message of something else than the front end, which has neither a name nor a range.
ordered_json jsonOf(const ordered_json& file, const ordered_json& line, const ordered_json& column,
                    const char* severity, const std::string& text)
{
    return {{"file", file},
            {"line", line},
            {"column", column},
            {"endLine", line},
            {"endColumn", column},
            {"severity", severity},
            {"name", nullptr},
            {"message", text},
            {"notes", ordered_json::array()},
            {"fixes", ordered_json::array()}};
}

} // namespace

Report::Report(WarningOptions warnings, bool asJson)
    : fWarnings(std::move(warnings)), fJson(asJson ? std::make_unique<ordered_json>(ordered_json::array()) : nullptr)
{
}

Report::~Report() = default;

void Report::add(const krFrontend::Module& module)
{
    std::vector<Diagnostic> diagnostics = module.diagnostics();
    if (fWarnings.isOn(kPlainWarnings))
    {
        const std::vector<Diagnostic> plain = krFrontend::plainDifferences(module);
        diagnostics.insert(diagnostics.end(), plain.begin(), plain.end());
        std::stable_sort(diagnostics.begin(), diagnostics.end(),
                         [](const Diagnostic& a, const Diagnostic& b) { return a.range.begin < b.range.begin; });
    }
    for (Diagnostic& diagnostic : diagnostics)
        add(module.sources(), std::move(diagnostic));
    fErrorCount += krTools::hiddenErrors(module);
    if (!fJson)
        krTools::printHidden(module);
}

void Report::add(const SourceSet& sources, Diagnostic diagnostic)
{
    if (diagnostic.severity == Severity::Warning)
    {
        if (!fWarnings.isOn(diagnostic.name))
            return;
        if (fWarnings.areErrors())
            diagnostic.severity = Severity::Error;
    }
    fErrorCount += diagnostic.severity == Severity::Error ? 1 : 0;
    clearProgress();
    if (fJson)
        fJson->push_back(jsonOf(sources, diagnostic, severityName(diagnostic.severity)));
    else
        krTools::print(sources, diagnostic);
}

void Report::add(const krTools::Source& source, krTools::Findings findings)
{
    findings.sort();
    fErrorCount += findings.hasErrors() ? 1 : 0;
    clearProgress();
    if (!fJson)
        return krTools::print(source, findings);
    for (const krTools::Finding& finding : findings.kept())
    {
        const krTools::Source::Place place = source.place(finding.position);
        fJson->push_back(jsonOf(source.name(), place.line, place.column, severityName(finding.severity), finding.text));
    }
}

void Report::error(const std::string& text)
{
    ++fErrorCount;
    clearProgress();
    if (fJson)
        fJson->push_back(jsonOf(nullptr, nullptr, nullptr, severityName(Severity::Error), text));
    else
        krTools::printError("krslc", text);
}

void Report::note(const SourceSet& sources, const Diagnostic& diagnostic)
{
    clearProgress();
    if (fJson)
        fJson->push_back(jsonOf(sources, diagnostic, kNote));
    else
        krTools::print(sources, krFrontend::DiagnosticNote{diagnostic.range, diagnostic.text});
}

void Report::note(const std::string& text)
{
    clearProgress();
    if (fJson)
        fJson->push_back(jsonOf(nullptr, nullptr, nullptr, kNote, text));
    else
        krTools::printNote("krslc", text);
}

void Report::showProgress(const std::string& text)
{
    if (::isatty(STDERR_FILENO) == 0)
        return;
    clearProgress();
    std::fputs(krTools::printable(text).c_str(), stderr);
    std::fflush(stderr);
    fShowsProgress = true;
}

void Report::summarize(const std::string& text)
{
    clearProgress();
    std::fprintf(stderr, "krslc: %s\n", text.c_str());
}

void Report::clearProgress()
{
    if (std::exchange(fShowsProgress, false))
        std::fputs("\r\033[K", stderr);
}

void Report::finish()
{
    clearProgress();
    if (!fJson)
        return;
    krTools::StandardOutput output;
    output.write(textOf(*fJson));
    output.finish();
}

std::string textOf(const ordered_json& document)
{
    return document.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}
