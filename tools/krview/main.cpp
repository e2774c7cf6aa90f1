#include "InputError.h"
#include "Options.h"
#include "Session.h"

#include <common/CommandLine.h>
#include <common/ExitStatus.h>

#include <optional>

namespace
{

int run(int argc, char** argv)
{
    try
    {
        const std::optional<Options> options = readOptions(argc, argv);
        return options ? showScene(*options) : krTools::kDone;
    }
    catch (const InputError& error)
    {
        error.print();
        return krTools::kInputHasErrors;
    }
}

} // namespace

int main(int argc, char** argv)
{
    return krTools::runProgram("krview", [argc, argv] { return run(argc, argv); });
}
