#pragma once
#include "Scene.h"

#include <common/Libraries.h>

#include <krender/shadergen/LightSpec.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// An input of the programs that krview sets.
struct ProgramInput
{
    std::string name; ///< in the program
    DataType type;
    bool perVertex;        ///< an attribute; else a uniform
    std::string lightName; ///< its name in the light's source; empty for an input of the material
};

/// The sources of a scene's material and lights, and the programs made from them. One object exists at a time.
class Material
{
public:
    /// Reads the sources and generates the programs. Errors in the sources are printed. Throws a krTools::FileError.
    /// @return  null when there are errors
    [[nodiscard]] static std::unique_ptr<Material> read(const Scene& scene);

    [[nodiscard]] std::string name() const { return fSpec->name().asChar(); }
    /// The programs, with the preamble that GLSL 1.20 needs.
    [[nodiscard]] const krTools::Source& vertexProgram() const { return *fVertexProgram; }
    [[nodiscard]] const krTools::Source& fragmentProgram() const { return *fFragmentProgram; }
    /// The inputs of the programs, the material's first.
    [[nodiscard]] const std::vector<ProgramInput>& inputs() const noexcept { return fInputs; }

    [[nodiscard]] const krShadingDag::ShadingNodeSpec& spec() const noexcept { return *fSpec; }
    [[nodiscard]] const krTools::Source& source() const { return *fSource; }
    [[nodiscard]] const std::vector<LightSpec>& lights() const noexcept { return fLights; }
    [[nodiscard]] const krTools::Source& lightSource(const LightSpec& light) const
    {
        return fLibraries.source(*light.spec);
    }

private:
    Material() = default;
    [[nodiscard]] bool findLights(const Scene& scene);
    void compile();
    void listInputs();

    krTools::Libraries fLibraries{"krview"};
    std::optional<krTools::Source> fSource;
    std::unique_ptr<krShadingDag::ShadingNodeSpec> fSpec;
    std::vector<LightSpec> fLights;
    std::optional<krTools::Source> fVertexProgram;
    std::optional<krTools::Source> fFragmentProgram;
    std::vector<ProgramInput> fInputs;
};
