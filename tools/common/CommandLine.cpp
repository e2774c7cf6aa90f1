#include <common/CommandLine.h>

#include <common/ExitStatus.h>
#include <common/PassingName.h>
#include <common/PrintedMessage.h>
#include <common/StandardOutput.h>
#include <common/UsageError.h>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
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

namespace
{

const char* gProgramName = "";

/// Prints that there is no memory, and takes none for it.
void reportNoMemory() noexcept
{
    std::array<char, 64> text;
    const int length = std::snprintf(text.data(), text.size(), "%s: error: out of memory\n", gProgramName);
    (void)writeAll(STDERR_FILENO, {text.data(), static_cast<std::size_t>(length)});
}

bool gIsOutOfMemory = false;

[[noreturn]] void noteNoMemory()
{
    gIsOutOfMemory = true;
    throw std::bad_alloc();
}

/// Destructors of the JSON library and of SPIRV-Cross take memory, and when there is none, nothing can catch that.
[[noreturn]] void endWithoutMemory() noexcept
{
    if (!gIsOutOfMemory && errno != ENOMEM)
        std::abort();
    PassingName::removeAll();
    reportNoMemory();
    ::_exit(kCannotRun);
}

} // namespace

int runProgram(const char* name, const std::function<int()>& run)
{
    gProgramName = name;
    std::set_new_handler(noteNoMemory);
    std::set_terminate(endWithoutMemory);
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
        reportNoMemory();
    }
    catch (const std::exception& error)
    {
        printError(name, error.what());
    }
    return kCannotRun;
}

} // namespace krTools
