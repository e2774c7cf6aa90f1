#pragma once
#include <string>

/// Prints what a source declares and defines, for people or as JSON.
/// @return  the exit status
int printSpecs(const std::string& path, bool asJson);
