#include "InputError.h"
#include "Options.h"
#include "Session.h"

#include <common/ExitStatus.h>
#include <common/Findings.h>
#include <common/UsageError.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <string>

namespace
{

void printError(const std::string& origin, const char* text)
{
    krTools::print(stderr, origin, krTools::Severity::Error, text);
}

int run(int argc, char** argv)
{
    const std::optional<Options> options = readOptions(argc, argv);
    return options ? showScene(*options) : krTools::kDone;
}

} // namespace

int main(int argc, char** argv)
{
    // A file past the limit for its size is then an error like any other, and leaves nothing behind.
    std::signal(SIGXFSZ, SIG_IGN);
    try
    {
        return run(argc, argv);
    }
    catch (const krTools::UsageError& error)
    {
        printError("krview", error.what());
        std::fputs("Try \"krview --help\".\n", stderr);
    }
    catch (const InputError& error)
    {
        printError(error.origin(), error.what());
        return krTools::kInputHasErrors;
    }
    catch (const std::bad_alloc&)
    {
        printError("krview", "out of memory");
    }
    catch (const std::exception& error)
    {
        printError("krview", error.what());
    }
    return krTools::kCannotRun;
}
