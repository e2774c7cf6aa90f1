#include "Options.h"
#include "PictureRun.h"
#include "WindowSession.h"

#ifdef KRVIEW_HAS_ASSIMP
#include <krview/mesh/AssimpReader.h>
#include <krview/mesh/MeshReaderProcess.h>
#endif
#include <krview/page/PageExport.h>
#include <krview/scene/InputError.h>

#include <common/CommandLine.h>
#include <common/ExitStatus.h>
#include <common/MessageOutput.h>

#include <optional>
#include <string_view>

namespace
{

int run(int argc, char** argv)
{
    try
    {
        const std::optional<Options> options = readOptions(argc, argv);
        if (!options)
            return krTools::kDone;
        if (!options->page.empty())
            return exportPage(*options);
        return options->wantsPictures() ? drawPictures(*options) : showInWindow(*options);
    }
    catch (const InputError& error)
    {
        error.print(krTools::standardMessages());
        return krTools::kInputHasErrors;
    }
}

} // namespace

int main(int argc, char** argv)
{
#ifdef KRVIEW_HAS_ASSIMP
    if (argc == 3 && std::string_view(argv[1]) == kMeshReaderArgument)
        readMeshHere(argv[2]);
#endif
    return krTools::runProgram("krview", [argc, argv] { return run(argc, argv); });
}
