#include "MaterialReader.h"

#include "Words.h"

#include <common/NearNames.h>

#include <filesystem>

using krShadingDag::ShadingNodeSpec;
using krTools::inQuotes;

MaterialName materialName(const std::string& option)
{
    const std::size_t colon = option.rfind(':');
    std::error_code failure;
    if (colon == std::string::npos || !isName(std::string_view(option).substr(colon + 1)) ||
        std::filesystem::exists(option, failure))
        return {option, ""};
    return {option.substr(0, colon), option.substr(colon + 1)};
}

std::unique_ptr<ShadingNodeSpec> MaterialReader::read()
{
    krTools::SourceReader reader(fSource, fFindings);
    if (reader.scan())
        reader.parse([this](std::unique_ptr<ShadingNodeSpec> spec, const krTools::FunctionOutline& outline)
                     { consider(std::move(spec), outline); });
    if (!fFindings.hasErrors() && !fMaterial)
        addMissing();
    fFindings.sort();
    krTools::print(stderr, fSource, fFindings);
    return fFindings.hasErrors() ? nullptr : std::move(fMaterial);
}

void MaterialReader::consider(std::unique_ptr<ShadingNodeSpec> spec, const krTools::FunctionOutline& outline)
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

void MaterialReader::addMissing()
{
    if (fDeclaration)
        fFindings.error(fDeclaration->first,
                        inQuotes(fDeclaration->second) + " is only declared: a material needs a body");
    else if (fName.empty())
        fFindings.error(0, "found no function declaration or definition");
    else
        fFindings.error(0, "this source has no function " + inQuotes(fName) + krTools::didYouMean(fName, fDefinitions));
}
