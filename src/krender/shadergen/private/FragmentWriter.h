#pragma once
#include <krender/shadergen/LightSpec.h>

#include <initializer_list>
#include <string>
#include <string_view>

/// How a target spells what the fragment programs of both have in common.
struct FragmentSpelling
{
    std::string_view lightInputs;    ///< declares what a light's code writes
    std::string_view materialInputs; ///< hands it on to the copy of the illuminance block
    std::string_view result;         ///< the last statement of the program
    std::string_view uniformEnd;     ///< ends the declaration of a uniform
    bool lightCommentNamesFunction;
    bool samplerAliasIsMacro; ///< samplers cannot be copied into a variable
};

/// The parts of a fragment program that depend on its material and lights.
struct FragmentSections
{
    std::string lightUniforms;
    std::string materialUniforms;
    std::string body;
};

/// Writes the sections.
/// @param aliases  the declarations that the program's outer block begins with
[[nodiscard]] FragmentSections writeFragment(const FragmentSpelling& spelling,
                                             const krShadingDag::ShadingNodeSpec& material,
                                             const std::vector<LightSpec>* lights, std::string_view aliases);

/// Whether every program has the value of that name anyway, so that no input of a material declares it.
[[nodiscard]] bool isStandardValue(const krString::CString& name) noexcept;

/// Calls the visitor with each input that the programs carry from the vertex to the fragment stage, in order.
template <class Visitor>
void forEachVertexInput(const krShadingDag::ShadingNodeSpec& material, Visitor visit)
{
    for (const krShadingDag::ShadingAttribute& input : material.inputs())
        if (input.range() == krShadingDag::kVertexRange && !isStandardValue(input.name()))
            visit(input);
}

/// Appends the pieces in order.
void appendAll(std::string& out, std::initializer_list<std::string_view> pieces);

/// The pieces as one text, allocated once.
[[nodiscard]] krString::CString join(std::initializer_list<std::string_view> pieces);
