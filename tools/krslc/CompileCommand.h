#pragma once
#include "WarningOptions.h"

#include <common/Targets.h>

#include <string>
#include <vector>

struct CompileOptions
{
    std::vector<std::string> materials; ///< FILE or FILE:NAME
    std::string stdlib;                 ///< empty: the one that comes with krslc; "none": none
    std::vector<std::string> libraries;
    std::vector<std::string> includeFolders;
    std::vector<std::string> lights;            ///< KEY=FUNCTION or KEY=FILE:FUNCTION
    std::vector<krTools::TargetChoice> targets; ///< in the order in which they are written
    std::string base;                           ///< of the output files' names, or "-"
    std::string vertexFile;                     ///< instead of a base
    std::string fragmentFile;                   ///< likewise
    std::string interfaceFile;                  ///< empty: none is written
    std::string depfile;                        ///< likewise
    WarningOptions warnings;
    bool keepIlluminance = false;
    bool withPreamble = false;
    bool validate = false;
    bool asPlain = false; ///< read with ShadingParser
    bool asJson = false;
};

/// Compiles materials for their lights and writes the programs.
/// @return  the exit status
int compile(const CompileOptions& options);
