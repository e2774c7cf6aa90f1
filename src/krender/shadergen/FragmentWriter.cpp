#include "krender/shadergen/private/FragmentWriter.h"

#include "krender/shading/private/StatementPrinter.h"
#include <krender/shading/Statement.h>

#include <utility>

namespace
{

using krShadingDag::ShadingAttribute;
using krShadingDag::ShadingNodeSpec;
using krShadingDag::Statement;
using krShadingDag::StatementType;

bool isUniform(const ShadingAttribute& input) noexcept { return input.range() == krShadingDag::kUniformRange; }

bool hasCode(const LightSpec& light) noexcept { return light.spec && !light.spec->body().empty(); }

void appendUniform(std::string& out, const FragmentSpelling& spelling, std::string_view prefix,
                   const ShadingAttribute& input)
{
    appendAll(out,
              {"\tuniform ", dataTypeName(input.dataType()), " ", prefix, input.name().view(), spelling.uniformEnd});
}

/// Prints a material's body with the lights' code in place of its illuminance blocks.
class BodyPrinter final : public krShadingDag::StatementPrinter
{
public:
    BodyPrinter(std::string& out, const FragmentSpelling& spelling, const std::vector<LightSpec>* lights,
                std::string_view aliases)
        : StatementPrinter(out, "", "\t"), fSpelling(spelling), fLights(lights), fAliases(aliases), fExpands(lights)
    {
    }

    /// How many illuminance blocks the lights have replaced.
    [[nodiscard]] unsigned expansions() const noexcept { return fExpansions; }

protected:
    void printListed(const Statement& statement) override
    {
        if (statement.type() == StatementType::Illuminance && fExpands)
            expand(statement);
        else if (statement.type() == StatementType::Block)
            printBlock([&] { print(statement.children()); });
        else
        {
            fIsOuterNext = false;
            StatementPrinter::printListed(statement);
        }
    }

private:
    /// The first statement of a body is the function's outer block, which the parser always makes.
    template <class Content>
    void printBlock(Content content)
    {
        const bool isOuter = std::exchange(fIsOuterNext, false);
        openBlock();
        if (isOuter)
            printLiteral(fAliases);
        content();
        if (isOuter)
            printLiteral(fSpelling.result);
        closeBlock();
        out() += '\n';
    }

    void expand(const Statement& illuminance)
    {
        ++fExpansions;
        for (const LightSpec& light : *fLights)
        {
            if (!hasCode(light))
                continue;
            printBlock(
                [&]
                {
                    printLiteral(fSpelling.lightInputs);
                    printBlock([&] { printLight(light); });
                    printBlock(
                        [&]
                        {
                            printLiteral(fSpelling.materialInputs);
                            print(illuminance.children());
                        });
                });
        }
    }

    void printLight(const LightSpec& light)
    {
        printLiteral("\n// LIGHT-SPECIFIC UNIFORMS.\n//");
        for (const ShadingAttribute& input : light.spec->inputs())
            if (isUniform(input))
                printAlias(light, input);
        printLiteral("\n// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.");

        // An illuminance block of the light's own stays: no light shines on a light, and expanding has to end.
        fExpands = false;
        print(light.spec->body().statement(0)->children());
        fExpands = true;

        for (const ShadingAttribute& input : light.spec->inputs())
            if (isUniform(input) && isMacro(input))
                printPieces({"#undef ", input.name().view()});
    }

    void printAlias(const LightSpec& light, const ShadingAttribute& input)
    {
        const std::string_view name = input.name().view();
        if (isMacro(input))
            printPieces({"#define ", name, " ", light.name.view(), name, "\n"});
        else
            printPieces({dataTypeName(input.dataType()), " ", name, " = ", light.name.view(), name, ";"});
    }

    void printPieces(std::initializer_list<std::string_view> pieces)
    {
        fLine.clear();
        appendAll(fLine, pieces);
        printLiteral(fLine);
    }

    [[nodiscard]] bool isMacro(const ShadingAttribute& input) const noexcept
    {
        return fSpelling.samplerAliasIsMacro && isSampler(input.dataType());
    }

    const FragmentSpelling& fSpelling;
    const std::vector<LightSpec>* fLights;
    std::string_view fAliases;
    std::string fLine;
    unsigned fExpansions = 0;
    bool fExpands;
    bool fIsOuterNext = true;
};

/// The declarations that one illuminance block brings along.
std::string lightUniforms(const FragmentSpelling& spelling, const std::vector<LightSpec>& lights)
{
    std::string uniforms;
    for (const LightSpec& light : lights)
    {
        if (!hasCode(light))
            continue;
        const std::string_view function = spelling.lightCommentNamesFunction ? light.spec->name().view() : "";
        appendAll(uniforms, {"\n\t// ", light.name.view(), function, "\n"});
        for (const ShadingAttribute& input : light.spec->inputs())
            if (isUniform(input))
                appendUniform(uniforms, spelling, light.name.view(), input);
    }
    return uniforms;
}

} // namespace

FragmentSections writeFragment(const FragmentSpelling& spelling, const ShadingNodeSpec& material,
                               const std::vector<LightSpec>* lights, std::string_view aliases)
{
    FragmentSections sections;
    BodyPrinter printer(sections.body, spelling, lights, aliases);
    printer.print(material.body());
    if (lights)
    {
        const std::string uniforms = lightUniforms(spelling, *lights);
        sections.lightUniforms.reserve(uniforms.size() * printer.expansions());
        for (unsigned i = 0; i < printer.expansions(); ++i)
            sections.lightUniforms += uniforms;
    }
    for (const ShadingAttribute& input : material.inputs())
        if (isUniform(input) && !isStandardValue(input.name()))
            appendUniform(sections.materialUniforms, spelling, "", input);
    return sections;
}

bool isStandardValue(const krString::CString& name) noexcept
{
    return krString::equal(name, "gWorldNormal") || krString::equal(name, "gWorldPos") ||
           krString::equal(name, "gWorldTangent");
}

void appendAll(std::string& out, std::initializer_list<std::string_view> pieces)
{
    for (const std::string_view piece : pieces)
        out += piece;
}

krString::CString join(std::initializer_list<std::string_view> pieces)
{
    std::size_t size = 0;
    for (const std::string_view piece : pieces)
        size += piece.size();
    std::string text;
    text.reserve(size);
    appendAll(text, pieces);
    return krString::CString(std::move(text));
}
