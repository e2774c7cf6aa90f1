#pragma once
#include "WarningOptions.h"

#include <common/Findings.h>

#include <krender/frontend/Module.h>

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <string>
#include <string_view>

/// What is found in the sources of a run: printed as it comes, or gathered and written as JSON at the end.
class Report
{
public:
    Report(WarningOptions warnings, bool asJson);
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    ~Report();

    /// Reports what was found in a module, and, if that is wanted, where a host that uses ShadingParser reads otherwise.
    void add(const krFrontend::Module& module);
    void add(const krFrontend::SourceSet& sources, krFrontend::Diagnostic diagnostic);
    void add(const krTools::Source& source, krTools::Findings findings);
    /// Tells something that is neither wrong nor suspicious.
    void note(const krFrontend::SourceSet& sources, const krFrontend::Diagnostic& diagnostic);
    void note(const std::string& text);
    /// Reports an error that has no place in a source.
    void error(const std::string& text);

    /// Shows on a terminal what is being done; the next message takes its place.
    void showProgress(const std::string& text);
    /// Takes what showProgress shows away, and writes the JSON.
    void finish();

    [[nodiscard]] std::size_t errorCount() const noexcept { return fErrorCount; }

private:
    void clearProgress();

    WarningOptions fWarnings;
    std::unique_ptr<nlohmann::ordered_json> fJson; ///< null where messages are printed
    std::size_t fErrorCount = 0;
    bool fShowsProgress = false;
};

/// A JSON document as it is written; broken UTF-8 is replaced.
[[nodiscard]] std::string textOf(const nlohmann::ordered_json& document);
