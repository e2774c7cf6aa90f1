#pragma once
#include "Material.h"

#include <krview/scene/Scene.h>

#include <krender/shading/DataType.h>

#include <cstddef>
#include <string>
#include <vector>

/// The number of components of a type; 0 for samplers and whatever else takes no numbers.
[[nodiscard]] std::size_t numberCount(DataType type);

/// Whether an input takes a value; pictures and streams are not looked at.
[[nodiscard]] bool suits(const InputValue& value, const ProgramInput& input);

/// The values of a program's inputs, before a driver gets them: the user's, and suitable defaults for the rest.
class ResolvedInputs
{
public:
    struct Uniform
    {
        const ProgramInput* input;
        std::vector<double> numbers; ///< as many as the type takes; matrices row by row, for column vectors
        const InputValue* picture;   ///< for a sampler; null for none
        float blur;                  ///< of the surroundings that a sampler mirrors, 0 to 1
    };
    struct Attribute
    {
        std::string name;   ///< in the program
        std::string stream; ///< empty: the numbers are used
        std::vector<double> numbers;
    };

    /// Looks up the values of the inputs of the material and its lights. Throws an InputError for a value that does not
    /// fit; pictures are not looked at.
    /// @param values    what the user set; the first that has an input's name counts. Borrowed, as are their values
    /// @param material  borrowed
    ResolvedInputs(const std::vector<const InputValues*>& values, const Material& material);

    /// In the order of the material's inputs.
    [[nodiscard]] const std::vector<Uniform>& uniforms() const noexcept { return fUniforms; }
    /// Those of the material, and those that every program may have.
    [[nodiscard]] const std::vector<Attribute>& attributes() const noexcept { return fAttributes; }
    /// The numbers of a uniform; null when there is none of that name in scenes, and for a sampler.
    [[nodiscard]] const std::vector<double>* numbers(const std::string& name) const;

private:
    void addAttribute(const ProgramInput& input, const InputValue* value);

    std::vector<Uniform> fUniforms;
    std::vector<Attribute> fAttributes;
};
