#pragma once
#include <common/PrintedMessage.h>

#include <krender/frontend/Module.h>

#include <cstddef>
#include <string>

namespace krTools
{

/// A diagnostic of the front end as it is printed: the message with its range underlined, its notes and its fixes.
[[nodiscard]] std::string format(const krFrontend::SourceSet& sources, const krFrontend::Diagnostic& diagnostic,
                                 bool colour);

[[nodiscard]] std::string format(const krFrontend::SourceSet& sources, const krFrontend::DiagnosticNote& note,
                                 bool colour);

/// How a message shows the kind: "name", for a warning "-Wname", as the option that switches it.
[[nodiscard]] std::string shownName(const krFrontend::Diagnostic& diagnostic);

/// What a fix does, in words, such as "insert ';'".
[[nodiscard]] std::string describe(const krFrontend::SourceSet& sources, const krFrontend::DiagnosticFix& fix);

/// How many errors of a module are counted but not kept.
[[nodiscard]] std::size_t hiddenErrors(const krFrontend::Module& module);

/// Prints all that was found in a module.
void print(std::FILE* file, const krFrontend::Module& module);

} // namespace krTools
