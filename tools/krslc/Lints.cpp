#include "Lints.h"

#include "Inspection.h"

void warnReserved(const Inspection& in, std::size_t name)
{
    in.warn(Warning::ReservedName, in.token(name),
            "the generated programs use the name " + krTools::inQuotes(in.text(name)) + " themselves");
}

void lint(const krTools::FunctionScanner& scanner, const krTools::ScannedFunction& function,
          const WarningOptions& warnings, krTools::Findings& findings)
{
    const Inspection in{scanner, function, warnings, findings};
    lintText(in);
    lintHeader(in);
    lintBody(in);
}
