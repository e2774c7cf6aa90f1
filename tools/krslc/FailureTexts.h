#pragma once
#include <common/Findings.h>

/// Finds what the generators leave in a program where they could not go on, vector widths that no target has, and uniforms
/// that are declared twice, as lights of one key or in several illuminance blocks make them.
void findFailureTexts(const krTools::Source& program, krTools::Findings& findings);
