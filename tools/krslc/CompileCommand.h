#pragma once
#include <string>
#include <utility>
#include <vector>

enum class Target
{
    Glsl,
    Cg,
    All,
};

struct CompileOptions
{
    std::string material; ///< FILE or FILE:NAME
    std::string stdlib;   ///< empty: the one that comes with krslc; "none": none
    std::vector<std::string> libraries;
    std::vector<std::string> lights; ///< KEY=FUNCTION
    Target target = Target::Glsl;
    std::string base;         ///< of the output files' names, or "-"
    std::string vertexFile;   ///< instead of a base
    std::string fragmentFile; ///< likewise
    std::string depfile;
    bool keepIlluminance = false;
    bool withPreamble = false;
    bool validate = false;
};

/// Compiles a material for its lights and writes the programs.
/// @return  the exit status
int compile(const CompileOptions& options);
