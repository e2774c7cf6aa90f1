#pragma once
#include "Options.h"

/// Draws the pictures that the options ask for, without a window. Throws an InputError, a DisplayError, a
/// krTools::UsageError and a krTools::FileError.
/// @return  the exit status
int drawPictures(const Options& options);
