// Whole library files: what the parser rejects, the programs' scan rejects too. It may reject more: a header without an
// end passes for trailing text in the parser.
#include "FuzzInput.h"

#include <krender/shading/ShadingParser.h>

#include <sys/mman.h>
#include <unistd.h>

using namespace krShadingDag;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    krTools::Findings findings;
    const krTools::Source source("fuzz", std::string(textOf(data, size).view()));
    krTools::SourceReader reader(source, findings);
    if (!reader.scan())
        return 0;
    reader.parse([](std::unique_ptr<ShadingNodeSpec>, const krTools::FunctionOutline&) {});

    const int file = memfd_create("fuzz", 0);
    require(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size), "the input stands in a file");
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const bool read = ShadingParser().parseFile(path.c_str(), false);
    close(file);
    require(read || findings.hasErrors(), "the scan sees every error of the parser");
    ShadingNodeSpec::clearLibrary();
    return 0;
}
