#pragma once
#include "GlProgram.h"
#include "Scene.h"
#include "Texture.h"

#include <string>
#include <vector>

class Geometry;

/// The values of a program's inputs: what the user gave, and for the rest something that shows the material well.
class Inputs
{
public:
    /// Checks the scene's values against what the material and its lights take, and uploads their pictures. Throws an
    /// InputError, and a krTools::FileError for a picture that cannot be read.
    Inputs(const Scene& scene, const Material& material);

    /// The picture files in use.
    [[nodiscard]] const std::vector<std::string>& files() const noexcept { return fFiles; }

    /// Gives the uniforms of the program, which is in use, their values.
    void setUniforms(const GlProgram& program) const;
    /// Leads the attributes to the streams of a shape, which have their device copies.
    void bindAttributes(const GlProgram& program, const Geometry& geometry) const;
    /// Undoes that.
    void unbindAttributes(const GlProgram& program) const;

private:
    struct Uniform
    {
        std::string name;
        DataType type;
        std::vector<double> numbers;
        Ref<Texture> texture; ///< for a sampler
    };
    struct Attribute
    {
        std::string name;
        std::string stream; ///< empty: the numbers count
        std::vector<double> numbers;
    };

    void addUniform(const ProgramInput& input, const InputValue* value);
    void addAttribute(const ProgramInput& input, const InputValue* value);
    [[nodiscard]] Ref<Texture> texture(const ProgramInput& input, const InputValue* value);

    std::vector<Uniform> fUniforms;
    std::vector<Attribute> fAttributes;
    std::vector<std::string> fFiles;
};
