#pragma once
#include <common/Findings.h>
#include <common/Source.h>

#include <krender/shading/ShadingNodeSpec.h>

#include <string>
#include <vector>

namespace krTools
{

/// A function that the plain parser read.
struct PlainFunction
{
    krShadingDag::ShadingNodeSpec* spec; ///< the spec library's
    std::string resultWord;              ///< as written: a type, "material" or "light"
    std::size_t position;                ///< of the header
};

/// What the plain parser made of a source.
struct PlainReading
{
    bool parsed = false;
    std::string messages; ///< the parser's, as it has them for a file
    std::vector<PlainFunction> functions;
};

/// Reads a source into the spec library as ShadingParser reads a file, with limits, so that every source comes to an end.
/// @param findings  gets what is wrong, at its place
[[nodiscard]] PlainReading readPlain(const Source& source, Findings& findings);

/// Empties the spec library at its end.
struct SpecLibraryCleaner
{
    SpecLibraryCleaner() = default;
    SpecLibraryCleaner(const SpecLibraryCleaner&) = delete;
    SpecLibraryCleaner& operator=(const SpecLibraryCleaner&) = delete;
    ~SpecLibraryCleaner() { krShadingDag::ShadingNodeSpec::clearLibrary(); }
};

} // namespace krTools
