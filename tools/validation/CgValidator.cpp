#include <validation/CgValidator.h>

#include <validation/CgReader.h>
#include <validation/CgText.h>

namespace krTools
{

PairFindings validateCg(const Source& vertex, const Source& fragment)
{
    PairFindings findings;
    (void)CgReader(EShLangVertex).read(vertex, findings.vertex);
    (void)CgReader(EShLangFragment).read(fragment, findings.fragment);
    checkCgText(vertex, fragment, findings);
    return findings;
}

} // namespace krTools
