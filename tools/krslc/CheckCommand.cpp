#include "CheckCommand.h"

#include "Report.h"

#include <common/ExitStatus.h>
#include <common/Modules.h>
#include <common/PlainReading.h>

int check(const CheckOptions& options)
{
    int status = krTools::kDone;
    Report report(options.warnings, options.asJson);
    for (const std::string& path : options.files)
        try
        {
            if (options.asPlain)
            {
                const krTools::SpecLibraryCleaner cleaner;
                const krTools::Source source(path);
                krTools::Findings findings;
                (void)krTools::readPlain(source, findings);
                report.add(source, std::move(findings));
            }
            else
                report.add(krTools::readModule(path, options.includeFolders));
        }
        catch (const krTools::FileError& error)
        {
            krTools::print(stderr, "krslc", krTools::Severity::Error, error.what());
            status = krTools::kCannotRun;
        }
    report.finish();
    return status == krTools::kDone && report.errorCount() > 0 ? krTools::kInputHasErrors : status;
}
