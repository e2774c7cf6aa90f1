#pragma once
#include "Warnings.h"

#include <string>
#include <vector>

struct CheckOptions
{
    std::vector<std::string> files;
    WarningOptions warnings;
    bool asJson = false;
};

/// Parses sources, warns of their traps and reports all that was found.
/// @return  the exit status
int check(const CheckOptions& options);
