#include "krender/shadergen/private/FragmentWriter.h"

#include "krender/shading/private/StatementPrinter.h"
#include <krender/platform/String.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace
{

using krShadingDag::ShadingAttribute;
using krShadingDag::ShadingNodeSpec;
using krShadingDag::Statement;
using krShadingDag::StatementType;

void appendUniform(std::string& out, const FragmentSpelling& spelling, std::string_view prefix,
                   const ShadingAttribute& input)
{
    appendAll(out,
              {"\tuniform ", dataTypeName(input.dataType()), " ", prefix, input.name().view(), spelling.uniformEnd});
}

/// Blocks nested deeper are not printed: the indent makes a program's length grow with the square of its depth.
constexpr std::size_t kDeepestBlock = 10'000;

/// Prints a material's body with the lights' code in place of its illuminance blocks.
class BodyPrinter final : public krShadingDag::StatementPrinter
{
public:
    BodyPrinter(FragmentSections& sections, const FragmentSpelling& spelling, const std::vector<LightSpec>* lights,
                std::string_view aliases, bool hasExtras)
        : StatementPrinter(sections.body, "", "\t"),
          fSections(sections),
          fSpelling(spelling),
          fLights(lights),
          fAliases(aliases),
          fHasExtras(hasExtras),
          fExpands(lights)
    {
    }

protected:
    void printListed(const Statement& statement) override
    {
        if (fHasExtras)
        {
            if (fSections.body.size() > kMostProgramBytes)
                return; // what is open is closed, and that is all
            fSections.places.emplace_back(fSections.body.size(), &statement);
        }
        if (statement.isCompound() && indent().size() >= kDeepestBlock)
            printLiteral("BLOCKS NESTED TOO DEEP!");
        else if (statement.type() == StatementType::Illuminance && fExpands)
        {
            ++fSections.expansionCount;
            fExpansions.push_back({&statement, fLights->begin(), false});
            openNextLight();
        }
        else if (std::exchange(fIsFirst, false) && statement.isCompound())
            printOuterBlock(statement);
        else
            StatementPrinter::printListed(statement);
    }

    void printEnd(unsigned end) override
    {
        switch (end)
        {
        case kEndOfBody:
            printLiteral(fSpelling.result);
            return closeBlock();
        case kEndOfLight:
            return closeLightAndOpenMaterial();
        case kEndOfMaterial:
            return closeMaterial();
        default:
            StatementPrinter::printEnd(end);
        }
    }

private:
    enum OwnEnd : unsigned
    {
        kEndOfBody = kFirstOwnEnd,
        kEndOfLight,
        kEndOfMaterial,
    };

    /// An illuminance block that is being replaced, and the light that it is being printed for.
    struct Expansion
    {
        const Statement* illuminance;
        std::vector<LightSpec>::const_iterator light;
        bool isFirst; ///< whether this light's block is the body's first statement
    };

    /// The body's first statement is the function's outer block, whatever kind of compound statement it is.
    void printOuterBlock(const Statement& statement)
    {
        if (!openCompound(statement))
            return StatementPrinter::printListed(statement);
        printLiteral(fAliases);
        enter(statement.children(), kEndOfBody);
    }

    /// Opens the block of the next light that has code, or ends the expansion.
    void openNextLight()
    {
        Expansion& expansion = fExpansions.back();
        expansion.light = std::find_if(expansion.light, fLights->end(), hasCode);
        if (expansion.light == fLights->end())
            return fExpansions.pop_back();
        const LightSpec& light = *expansion.light;

        openBlock();
        expansion.isFirst = std::exchange(fIsFirst, false);
        if (expansion.isFirst)
            printLiteral(fAliases);
        printLiteral(fSpelling.lightInputs);

        openBlock();
        printLiteral("\n// LIGHT-SPECIFIC UNIFORMS.\n//");
        for (const ShadingAttribute& input : light.spec->inputs())
            if (isUniform(input))
                printAlias(light, input);
        printLiteral("\n// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.");
        // Illuminance blocks in a light's own code stay: expanding them would never end.
        fExpands = false;
        enter(light.spec->body().statement(0)->children(), kEndOfLight);
    }

    void closeLightAndOpenMaterial()
    {
        fExpands = true;
        const Expansion& expansion = fExpansions.back();
        for (const ShadingAttribute& input : expansion.light->spec->inputs())
            if (isUniform(input) && isMacro(input))
                printPieces({"#undef ", input.name().view()});
        closeBlock();

        openBlock();
        printLiteral(fSpelling.materialInputs);
        enter(expansion.illuminance->children(), kEndOfMaterial);
    }

    void closeMaterial()
    {
        closeBlock();
        Expansion& expansion = fExpansions.back();
        if (expansion.isFirst)
            printLiteral(fSpelling.result);
        closeBlock();
        ++expansion.light;
        openNextLight();
    }

    void printAlias(const LightSpec& light, const ShadingAttribute& input)
    {
        const std::string_view name = input.name().view();
        if (isMacro(input))
            printPieces({"#define ", name, " ", light.name.view(), name, "\n"});
        else if (fSpelling.boolUniformIsInt && input.dataType() == kBool)
            printPieces({"bool ", name, " = bool(", light.name.view(), name, ");"});
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

    FragmentSections& fSections;
    const FragmentSpelling& fSpelling;
    const std::vector<LightSpec>* fLights; ///< null: illuminance blocks stay
    std::string_view fAliases;
    std::string fLine;
    std::vector<Expansion> fExpansions; ///< those that are open, each within the material code of the one before
    bool fHasExtras;
    bool fExpands;
    bool fIsFirst = true; ///< until the body's first statement is printed
};

/// The declarations of the lights' uniforms for one illuminance block.
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
                               const std::vector<LightSpec>* lights, std::string_view aliases, bool hasExtras)
{
    FragmentSections sections;
    BodyPrinter(sections, spelling, lights, aliases, hasExtras).print(material.body());
    return sections;
}

UniformSections declareUniforms(const FragmentSpelling& spelling, const ShadingNodeSpec& material,
                                const std::vector<LightSpec>* lights, const FragmentSections& sections, bool hasExtras)
{
    UniformSections declared;
    if (lights)
    {
        const std::string uniforms = lightUniforms(spelling, *lights);
        const unsigned copies = hasExtras ? std::min(sections.expansionCount, 1u) : sections.expansionCount;
        declared.lights.reserve(uniforms.size() * copies);
        for (unsigned i = 0; i < copies; ++i)
            declared.lights += uniforms;
    }
    for (const ShadingAttribute& input : material.inputs())
        if (isUniform(input) && !isStandardValue(input.name()))
            appendUniform(declared.material, spelling, "", input);
    return declared;
}

krString::CString joinFragment(std::initializer_list<std::string_view> head,
                               std::initializer_list<std::string_view> tail, const FragmentSections& sections,
                               FragmentExtras* extras)
{
    std::string text;
    appendAll(text, head);
    const std::size_t functions = text.size();
    if (extras)
        text += extras->functions;
    appendAll(text, tail);
    if (!extras)
        return krString::CString(std::move(text));

    extras->statements.clear();
    extras->isTooLarge = text.size() > kMostProgramBytes;
    if (extras->isTooLarge)
        return {};
    const auto linesBetween = [&text](std::size_t first, std::size_t last)
    {
        const auto begin = text.begin();
        return static_cast<std::size_t>(
            std::count(begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(last), '\n'));
    };
    extras->functionsLine = 1 + linesBetween(0, functions);
    std::size_t line = 1;
    std::size_t done = 0;
    const std::size_t body = text.size() - sections.body.size();
    extras->statements.reserve(sections.places.size());
    for (const auto& [place, statement] : sections.places)
    {
        line += linesBetween(done, body + place);
        done = body + place;
        extras->statements.push_back({line, statement});
    }
    return krString::CString(std::move(text));
}

bool isUniform(const ShadingAttribute& input) noexcept { return input.range() == krShadingDag::kUniformRange; }

bool hasCode(const LightSpec& light) noexcept { return light.spec && !light.spec->body().empty(); }

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
