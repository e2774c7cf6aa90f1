#pragma once
#include "Warnings.h"

#include <common/FunctionScanner.h>

/// Warns of what looks like one thing and is another in a function of a source.
void lint(const krTools::FunctionScanner& scanner, const krTools::ScannedFunction& function,
          const WarningOptions& warnings, krTools::Findings& findings);
