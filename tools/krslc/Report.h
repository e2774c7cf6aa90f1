#pragma once
#include "WarningOptions.h"

#include <common/Messages.h>

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <string>

/// What is found in the sources of a run: printed as it comes, or gathered and written as JSON at the end.
class Report : public krTools::Messages
{
public:
    Report(WarningOptions warnings, bool asJson);
    ~Report() override;

    /// Reports what was found in a module, and, if that is wanted, where a host that uses ShadingParser reads otherwise.
    void add(const krFrontend::Module& module) override;
    void add(const krFrontend::SourceSet& sources, krFrontend::Diagnostic diagnostic) override;
    void add(const krTools::Source& source, krTools::Findings findings) override;
    void error(const std::string& text) override;
    void note(const krFrontend::SourceSet& sources, const krFrontend::Diagnostic& diagnostic) override;
    void note(const std::string& text) override;
    using Messages::add;

    /// Shows on a terminal what is being done; the next message takes its place.
    void showProgress(const std::string& text);
    /// Prints how the run went, in the place of what showProgress shows.
    void summarize(const std::string& text);
    /// Takes what showProgress shows away, and writes the JSON.
    void finish();

private:
    void clearProgress();

    WarningOptions fWarnings;
    std::unique_ptr<nlohmann::ordered_json> fJson; ///< null where messages are printed
    bool fShowsProgress = false;
};

/// A JSON document as it is written; broken UTF-8 is replaced.
[[nodiscard]] std::string textOf(const nlohmann::ordered_json& document);
