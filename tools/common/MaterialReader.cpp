#include <common/MaterialReader.h>

#include <common/Findings.h>
#include <common/NearNames.h>
#include <common/SourceReader.h>
#include <common/Words.h>

#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

using krShadingDag::ShadingNodeSpec;

namespace krTools
{

namespace
{

/// Looks for the material among the functions of a source.
class MaterialReader
{
public:
    MaterialReader(const Source& source, const std::string& name) : fSource(source), fName(name) {}

    /// @return  the material; null when there is none, which is then reported
    [[nodiscard]] std::unique_ptr<ShadingNodeSpec> read()
    {
        SourceReader reader(fSource, fFindings);
        if (reader.scan())
            reader.parse([this](std::unique_ptr<ShadingNodeSpec> spec, const FunctionOutline& outline)
                         { consider(std::move(spec), outline); });
        if (!fFindings.hasErrors() && !fMaterial)
            addMissing();
        fFindings.sort();
        print(stderr, fSource, fFindings);
        return fFindings.hasErrors() ? nullptr : std::move(fMaterial);
    }

private:
    void consider(std::unique_ptr<ShadingNodeSpec> spec, const FunctionOutline& outline)
    {
        std::string name = spec->name().asChar();
        const bool isWanted = fName.empty() || name == fName;
        if (!outline.isDefinition)
        {
            if (isWanted && !fDeclaration)
                fDeclaration = {outline.position, std::move(name)};
            return;
        }
        const bool isMaterial = outline.resultWord == "material";
        if (isWanted && (!fMaterial || (fName.empty() && isMaterial && !fSaysMaterial)))
        {
            fMaterial = std::move(spec);
            fSaysMaterial = isMaterial;
        }
        fDefinitions.push_back(std::move(name));
    }

    void addMissing()
    {
        if (fDeclaration)
            fFindings.error(fDeclaration->first,
                            inQuotes(fDeclaration->second) + " is only declared: a material needs a body");
        else if (fName.empty())
            fFindings.error(0, "found no function declaration or definition");
        else
            fFindings.error(0, "this source has no function " + inQuotes(fName) + didYouMean(fName, fDefinitions));
    }

    const Source& fSource;
    std::string fName;
    Findings fFindings;
    std::unique_ptr<ShadingNodeSpec> fMaterial;
    bool fSaysMaterial = false;
    std::optional<std::pair<std::size_t, std::string>> fDeclaration; ///< the first, its place and name
    std::vector<std::string> fDefinitions;
};

} // namespace

MaterialName materialName(const std::string& text)
{
    const std::size_t colon = text.rfind(':');
    std::error_code failure;
    if (colon == std::string::npos || !isName(std::string_view(text).substr(colon + 1)) ||
        std::filesystem::exists(text, failure))
        return {text, ""};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

std::unique_ptr<ShadingNodeSpec> readMaterial(const Source& source, const std::string& name)
{
    return MaterialReader(source, name).read();
}

} // namespace krTools
