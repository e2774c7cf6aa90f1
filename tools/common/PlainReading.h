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
    krShadingDag::ShadingNodeSpec* spec; ///< the library's
    std::string resultWord;              ///< as written: a type, "material" or "light"
};

/// What the plain parser made of a source.
struct PlainReading
{
    bool parsed = false;
    std::string messages; ///< the parser's, as it has them for a file
    std::vector<PlainFunction> functions;
};

/// Functions of plain sources, as the spec library holds them for a host that reads these sources and no others.
class PlainLibrary
{
public:
    PlainLibrary() = default;
    PlainLibrary(const PlainLibrary&) = delete;
    PlainLibrary& operator=(const PlainLibrary&) = delete;
    ~PlainLibrary();

    /// Reads a source as ShadingParser reads a file, with limits, so that every source comes to an end.
    /// @param findings  gets what is wrong, at its place
    PlainReading read(const Source& source, Findings& findings);

    [[nodiscard]] const krShadingDag::ShadingNodeSpec::Library& specs() const noexcept { return fSpecs; }
    /// The first function of that name that has a body, or null.
    [[nodiscard]] const krShadingDag::ShadingNodeSpec* findDefinition(const std::string& name) const;

private:
    krShadingDag::ShadingNodeSpec::Library fSpecs; ///< stands in the spec library's place while a source is read
};

/// Whether a function has a body.
[[nodiscard]] inline bool isDefinition(const krShadingDag::ShadingNodeSpec& spec)
{
    return spec.nodeType() == krShadingDag::kDefinition;
}

} // namespace krTools
