#pragma once
#include "WarningOptions.h"

#include <string>
#include <vector>

struct CheckOptions
{
    std::vector<std::string> files;
    std::vector<std::string> includeFolders;
    WarningOptions warnings;
    bool asPlain = false; ///< read with ShadingParser
    bool asJson = false;
};

/// Reads sources and reports all errors and warnings.
/// @return  the exit status
int check(const CheckOptions& options);
