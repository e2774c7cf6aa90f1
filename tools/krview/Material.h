#pragma once
#include "Scene.h"

#include <common/Libraries.h>

#include <krender/shadergen/LightSpec.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// An input that the host gives values to.
struct ProgramInput
{
    std::string name; ///< in the program
    DataType type;
    bool perVertex;        ///< an attribute, and not a uniform
    std::string lightName; ///< what the light itself calls it; empty for an input of the material
};

/// The sources of a scene's material and lights, and the programs made from them. One object exists at a time.
class Material
{
public:
    /// Reads the sources and writes the programs. What is wrong with the sources is printed. Throws a krTools::FileError.
    /// @return  null when something is
    [[nodiscard]] static std::unique_ptr<Material> read(const Scene& scene);

    [[nodiscard]] std::string name() const { return fSpec->name().asChar(); }
    /// The programs with what GLSL 1.20 needs ahead of them.
    [[nodiscard]] const krTools::Source& vertexProgram() const { return *fVertexProgram; }
    [[nodiscard]] const krTools::Source& fragmentProgram() const { return *fFragmentProgram; }
    /// What the programs take, the material's inputs first.
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
