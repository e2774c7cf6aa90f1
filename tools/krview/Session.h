#pragma once
#include "Options.h"

/// Opens a window, shows the scene and stays until it has been closed or has done what the options ask for.
/// @return  the exit status. Throws an InputError, a DisplayError, a krTools::UsageError and a krTools::FileError.
int showScene(const Options& options);
