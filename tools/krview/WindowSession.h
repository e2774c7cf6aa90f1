#pragma once
#include "Options.h"

/// Opens a window and shows the scene until the user closes it or the options' frames are drawn. Throws an InputError, a
/// DisplayError, a krTools::UsageError and a krTools::FileError.
/// @return  the exit status
int showInWindow(const Options& options);
