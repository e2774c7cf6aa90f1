#pragma once
#include <CLI/CLI.hpp>

#include <functional>

namespace krTools
{

/// Reads the command line of a program. Throws a UsageError when it makes no sense.
/// @return  whether there is something left to do: false once the help or the version, which it asked for, is printed
[[nodiscard]] bool readCommandLine(CLI::App& app, int argc, char** argv);

/// Runs a program and prints the error that ends it early.
/// @param name  the program's
/// @param run   gives the exit status
/// @return  the exit status
[[nodiscard]] int runProgram(const char* name, const std::function<int()>& run);

} // namespace krTools
