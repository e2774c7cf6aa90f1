#pragma once
#include <common/SourceReader.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Which function of which file is the material.
struct MaterialName
{
    std::string file;
    std::string function; ///< empty: the first that can be one
};

/// Takes FILE or FILE:NAME apart. A file of the whole name wins.
[[nodiscard]] MaterialName materialName(const std::string& option);

/// The material of a source: the first function of the name asked for that has a body. Without a name it is the first
/// with a body that says "material" in its header, or the first with a body when none says so.
class MaterialReader
{
public:
    /// @param source  borrowed for the reader's life
    MaterialReader(const krTools::Source& source, std::string name) : fSource(source), fName(std::move(name)) {}

    /// @return  the material; null when there is none, which is then reported
    [[nodiscard]] std::unique_ptr<krShadingDag::ShadingNodeSpec> read();

private:
    void consider(std::unique_ptr<krShadingDag::ShadingNodeSpec> spec, const krTools::FunctionOutline& outline);
    void addMissing();

    const krTools::Source& fSource;
    std::string fName;
    krTools::Findings fFindings;
    std::unique_ptr<krShadingDag::ShadingNodeSpec> fMaterial;
    bool fSaysMaterial = false;
    std::optional<std::pair<std::size_t, std::string>> fDeclaration; ///< the first, its place and name
    std::vector<std::string> fDefinitions;
};
