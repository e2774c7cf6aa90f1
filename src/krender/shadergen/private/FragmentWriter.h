#pragma once
#include <krender/platform/String.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/Statement.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// How a target spells what the fragment programs of all targets have in common.
struct FragmentSpelling
{
    std::string_view lightInputs;    ///< declares the variables that a light's code sets
    std::string_view materialInputs; ///< passes them on to the copy of the illuminance block
    std::string_view result;         ///< the last statement of the program
    std::string_view uniformEnd;     ///< ends the declaration of a uniform that stands for itself
    bool lightCommentNamesFunction;
    bool samplerAliasIsMacro; ///< for a target in which samplers cannot be copied into variables
    bool boolUniformIsInt;    ///< for a target in which bools cannot come from outside
};

/// The parts of a fragment program that depend on its material and lights.
struct FragmentSections
{
    std::string body;
    std::vector<std::pair<std::size_t, const krShadingDag::Statement*>> places; ///< byte of the body, statement
    unsigned expansionCount = 0; ///< how many illuminance blocks the lights have replaced
};

/// The declarations of uniforms, one for itself each.
struct UniformSections
{
    std::string lights;
    std::string material;
};

/// @param lights   null leaves the illuminance blocks as they are
/// @param aliases  the declarations at the start of the program's outer block
/// @param hasExtras  whether the program is limited, declares each light's uniforms once, and wants the places
[[nodiscard]] FragmentSections writeFragment(const FragmentSpelling& spelling,
                                             const krShadingDag::ShadingNodeSpec& material,
                                             const std::vector<LightSpec>* lights, std::string_view aliases,
                                             bool hasExtras);

/// The declarations for a program with these sections.
[[nodiscard]] UniformSections declareUniforms(const FragmentSpelling& spelling,
                                              const krShadingDag::ShadingNodeSpec& material,
                                              const std::vector<LightSpec>* lights, const FragmentSections& sections,
                                              bool hasExtras);

/// The fragment program: what stands ahead of the extras' functions, the functions, and the rest, which ends with the
/// sections' body. Tells the extras what stands where.
/// @param extras  null: there are none
[[nodiscard]] krString::CString joinFragment(std::initializer_list<std::string_view> head,
                                             std::initializer_list<std::string_view> tail,
                                             const FragmentSections& sections, FragmentExtras* extras);

/// Whether every program has a value of that name, so that a material's input of the name is not declared.
[[nodiscard]] bool isStandardValue(const krString::CString& name) noexcept;

[[nodiscard]] bool isUniform(const krShadingDag::ShadingAttribute& input) noexcept;
/// Whether the light adds anything to a program.
[[nodiscard]] bool hasCode(const LightSpec& light) noexcept;

/// Calls the visitor with each uniform and its light's name ahead of it: the material's first, then the lights' in their
/// order.
template <class Visitor>
void forEachUniform(const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights, Visitor visit)
{
    for (const krShadingDag::ShadingAttribute& input : material.inputs())
        if (isUniform(input) && !isStandardValue(input.name()))
            visit(std::string_view(), input);
    if (!lights)
        return;
    for (const LightSpec& light : *lights)
        if (hasCode(light))
            for (const krShadingDag::ShadingAttribute& input : light.spec->inputs())
                if (isUniform(input))
                    visit(light.name.view(), input);
}

/// Calls the visitor with each input that is passed from the vertex to the fragment program, in order.
template <class Visitor>
void forEachVertexInput(const krShadingDag::ShadingNodeSpec& material, Visitor visit)
{
    for (const krShadingDag::ShadingAttribute& input : material.inputs())
        if (input.range() == krShadingDag::kVertexRange && !isStandardValue(input.name()))
            visit(input);
}

/// Appends the pieces in order.
void appendAll(std::string& out, std::initializer_list<std::string_view> pieces);

/// The pieces in order, as one text.
[[nodiscard]] krString::CString join(std::initializer_list<std::string_view> pieces);
