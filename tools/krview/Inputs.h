#pragma once
#include "GlProgram.h"
#include "Scene.h"
#include "Texture.h"

#include <krender/core/Ref.h>
#include <krender/shading/DataType.h>

#include <string>
#include <vector>

class Geometry;

/// The values of a program's inputs: the user's, and suitable defaults for the rest.
class Inputs
{
public:
    /// Checks the scene's values against the inputs of the material and its lights, and uploads their pictures. Throws an
    /// InputError, and a krTools::FileError for a picture that cannot be read.
    /// @param files  the picture files that are read or missing are appended
    Inputs(const Scene& scene, const Material& material, std::vector<std::string>& files);

    /// Sets the uniforms of a program that is in use.
    void setUniforms(GlUniforms& uniforms) const;
    /// Binds the attributes to the streams of a shape, which must have their device copies.
    void bindAttributes(const GlProgram& program, const Geometry& geometry) const;
    /// Disables the attributes again.
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
        std::string stream; ///< empty: the numbers are used
        std::vector<double> numbers;
    };

    void addUniform(const ProgramInput& input, const InputValue* value, std::vector<std::string>& files);
    void addAttribute(const ProgramInput& input, const InputValue* value);
    [[nodiscard]] static Ref<Texture> texture(const ProgramInput& input, const InputValue* value,
                                              std::vector<std::string>& files);

    std::vector<Uniform> fUniforms;
    std::vector<Attribute> fAttributes;
};
