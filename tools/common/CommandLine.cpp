#include <common/CommandLine.h>

#include <common/ExitStatus.h>
#include <common/PrintedMessage.h>
#include <common/StandardOutput.h>
#include <common/UsageError.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

namespace krTools
{

bool readCommandLine(CLI::App& app, int argc, char** argv)
{
    try
    {
        app.parse(argc, argv);
        return true;
    }
    catch (const CLI::CallForHelp&)
    {
        printText(app.help());
    }
    catch (const CLI::CallForVersion&)
    {
        printText(app.version() + '\n');
    }
    catch (const CLI::ParseError& error)
    {
        throw UsageError(error.what());
    }
    return false;
}

int runProgram(const char* name, const std::function<int()>& run)
{
    // A file past the limit for its size is then an error like any other, and leaves nothing behind.
    std::signal(SIGXFSZ, SIG_IGN);
    try
    {
        return run();
    }
    catch (const UsageError& error)
    {
        printError(name, error.what());
        std::fprintf(stderr, "Try \"%s --help\".\n", name);
    }
    catch (const std::bad_alloc&)
    {
        printError(name, "out of memory");
    }
    catch (const std::exception& error)
    {
        printError(name, error.what());
    }
    return kCannotRun;
}

} // namespace krTools
