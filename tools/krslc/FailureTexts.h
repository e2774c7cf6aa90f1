#pragma once
#include <common/Findings.h>

/// Finds what the generators leave in a program where they could not go on, and vector widths that no target has.
void findFailureTexts(const krTools::Source& program, krTools::Findings& findings);
