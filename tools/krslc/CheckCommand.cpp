#include "CheckCommand.h"

#include "Report.h"

#include <common/ExitStatus.h>
#include <common/MaterialCompiler.h>
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
                const krTools::Source source(path);
                krTools::Findings findings;
                (void)krTools::PlainLibrary().read(source, findings);
                report.add(source, std::move(findings));
            }
            else
                report.add(krTools::readModule(path, {.includeFolders = options.includeFolders}));
        }
        catch (const krTools::FileError& error)
        {
            report.error(error.what());
            status = krTools::kCannotRun;
        }
    report.finish();
    return status == krTools::kDone && report.errorCount() > 0 ? krTools::kInputHasErrors : status;
}
