#pragma once
#include <string>

/// Prints the token stream of a file.
/// @return  the exit status
int printTokens(const std::string& path);
