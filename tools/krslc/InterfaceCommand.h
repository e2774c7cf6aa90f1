#pragma once
#include <string>
#include <vector>

struct InterfaceOptions
{
    std::string file;
    std::vector<std::string> includeFolders;
    bool asJson = false;
};

/// Prints the materials, lights and functions of a source with their inputs.
/// @return  the exit status
int printInterface(const InterfaceOptions& options);
