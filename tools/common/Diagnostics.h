#pragma once
#include <common/MessageOutput.h>

#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>

#include <cstddef>

namespace krTools
{

/// How many errors of a module are counted but not kept.
[[nodiscard]] std::size_t hiddenErrors(const krFrontend::Module& module);

/// Shows a diagnostic with its notes and fixes.
void print(const krFrontend::SourceSet& sources, const krFrontend::Diagnostic& diagnostic,
           MessageOutput& output = standardMessages());
/// Shows a note.
void print(const krFrontend::SourceSet& sources, const krFrontend::DiagnosticNote& note,
           MessageOutput& output = standardMessages());
/// Shows how many errors of a module are left out, if there are any.
void printHidden(const krFrontend::Module& module, MessageOutput& output = standardMessages());

} // namespace krTools
