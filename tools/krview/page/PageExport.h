#pragma once
#include <krview/Options.h>

/// Writes the scene as a page for browsers, without a display or driver. Errors in the sources are printed. Throws an
/// InputError, a krTools::UsageError and a krTools::FileError.
/// @return  the exit status
int exportPage(const Options& options);
