#include "CheckCommand.h"

#include "FindingsJson.h"
#include "Lints.h"

#include <common/ExitStatus.h>
#include <common/SourceReader.h>
#include <common/StandardOutput.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

using nlohmann::ordered_json;

namespace
{

krTools::Findings inspect(const krTools::Source& source, const WarningOptions& warnings)
{
    krTools::Findings findings;
    krTools::SourceReader reader(source, findings);
    const bool safe = reader.scan([&](const krTools::FunctionScanner& scanner, const krTools::ScannedFunction& function)
                                  { lint(scanner, function, warnings, findings); });
    if (safe)
        reader.parse([](const std::unique_ptr<krShadingDag::ShadingNodeSpec>&, const krTools::FunctionOutline&) {});
    if (reader.outlines().empty() && !findings.hasErrors())
        warnings.warn(findings, Warning::EmptySource, 0, "this source has no function");
    findings.sort();
    return findings;
}

} // namespace

int check(const CheckOptions& options)
{
    int status = krTools::kDone;
    ordered_json list = ordered_json::array();
    for (const std::string& path : options.files)
        try
        {
            const krTools::Source source(path);
            const krTools::Findings findings = inspect(source, options.warnings);
            if (options.asJson)
                appendFindings(list, source, findings);
            else
                krTools::print(stderr, source, findings);
            if (findings.hasErrors())
                status = std::max<int>(status, krTools::kInputHasErrors);
        }
        catch (const krTools::FileError& error)
        {
            krTools::print(stderr, "krslc", krTools::Severity::Error, error.what());
            status = krTools::kCannotRun;
        }
    if (options.asJson)
    {
        krTools::StandardOutput output;
        output.write(textOf(list));
        output.finish();
    }
    return status;
}
