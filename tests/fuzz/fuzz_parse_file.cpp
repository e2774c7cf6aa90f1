// Whole library files: what is read leaves functions or nothing, and a failure says why.
#include "FuzzInput.h"

#include <sys/mman.h>
#include <unistd.h>

using namespace krShadingDag;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int file = memfd_create("fuzz", 0);
    require(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size), "the input stands in a file");
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    ShadingParser parser;
    parser.setLimits(krShadingDag::kLimitsForAnySource);
    (void)parser.parseFile(path.c_str(), false);
    close(file);
    require(parser.errorString().length() > 0, "the parser says how the reading ended");
    ShadingNodeSpec::clearLibrary();
    return 0;
}
