#pragma once
#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>

#include <cstddef>

namespace krTools
{

/// How many errors of a module are counted but not kept.
[[nodiscard]] std::size_t hiddenErrors(const krFrontend::Module& module);

/// Prints a diagnostic on standard error.
void print(const krFrontend::SourceSet& sources, const krFrontend::Diagnostic& diagnostic);
/// Prints a note on standard error.
void print(const krFrontend::SourceSet& sources, const krFrontend::DiagnosticNote& note);
/// Prints on standard error how many errors of a module are not shown, if there are any.
void printHidden(const krFrontend::Module& module);

} // namespace krTools
