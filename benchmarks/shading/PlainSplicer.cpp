#include "PlainSplicer.h"

#include <krender/shading/Statement.h>

#include <initializer_list>

using krString::CString;
using namespace krShadingDag;

namespace
{

CString text(std::initializer_list<CString> pieces)
{
    CString all;
    for (const CString& piece : pieces)
        krString::plusEqual(all, piece);
    return all;
}

// Printing, each level as a string of its own.

CString indented(const CString& text, const CString& prefix)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    unsigned base = 0;
    while (isBlank(text[base]))
        ++base;
    CString out;
    unsigned blanks = 0;
    bool atLineStart = true;
    for (unsigned i = base; i < text.length(); ++i)
    {
        if (text[i] == '\n')
        {
            atLineStart = true;
            blanks = 0;
        }
        else if (atLineStart && isBlank(text[i]))
        {
            if (++blanks <= base)
                continue;
        }
        else if (atLineStart)
        {
            krString::plusEqual(out, prefix);
            atLineStart = false;
        }
        krString::plusEqual(out, CString(text[i]));
    }
    return out;
}

CString printed(const StatementCompound& list, const CString& indent);

CString printed(const Statement& statement, const CString& indent)
{
    const CString children = printed(statement.children(), krString::plus(indent, "\t"));
    switch (statement.type())
    {
    case StatementType::Block:
        return text({indent, "{\n", children, indent, "}"});
    case StatementType::Illuminance:
        return text({indent, "illuminance\n", indent, "{\n", children, indent, "}"});
    case StatementType::If:
        return text({indented(statement.text(), indent), "\n", indent, "{\n", children, indent, "}"});
    case StatementType::Else:
        return text({indent, "else\n", indent, "{", children, indent, "}"});
    default:
        return indented(statement.text(), indent);
    }
}

CString printed(const StatementCompound& list, const CString& indent)
{
    CString out;
    for (unsigned i = 0; i < list.size(); ++i)
        krString::plusEqual(out, krString::plus(printed(*list.statement(i), indent), "\n"));
    return out;
}

StatementCompound& appendBlock(StatementCompound& list)
{
    Statement* block = list.appendStatement(nullptr);
    block->setType(StatementType::Block);
    return block->children();
}

class Splicer
{
public:
    Splicer(const SplicerTarget& target, const std::vector<LightSpec>& lights) : fTarget(target), fLights(lights) {}

    void expandAll(StatementCompound& body)
    {
        while (Statement* illuminance = body.findStatement(StatementType::Illuminance))
        {
            for (const LightSpec& light : fLights)
                insert(light, *illuminance);
            illuminance->parent()->removeStatement(illuminance);
        }
    }

    CString uniforms;

private:
    void insert(const LightSpec& light, Statement& illuminance)
    {
        Statement* outer = illuminance.parent()->insertNewStatement(&illuminance, false);
        outer->setType(StatementType::Block);
        StatementCompound& list = outer->children();
        const CString vec3 = fTarget.vec3;
        CString inputs = "// LIGHT-SPECIFIC INPUTS\n";
        CString handOver = "// MATERIAL-SPECIFIC INPUTS\n";
        for (const char* value : {"LightWorldDir", "LightAmbientColor", "LightDiffuseColor", "LightSpecularColor"})
        {
            krString::plusEqual(inputs, text({vec3, " out", value, ";\n"}));
            krString::plusEqual(handOver, text({vec3, " g", value, " = out", value, ";\n"}));
        }
        list.appendLiteralStatement(inputs);
        krString::plusEqual(uniforms, text({"\n\t// ", light.name,
                                            fTarget.commentNamesFunction ? light.spec->name() : CString(), "\n"}));
        appendLight(light, appendBlock(list));
        StatementCompound& material = appendBlock(list);
        material.appendLiteralStatement(krString::plus(handOver, "\n// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION"));
        material.appendStatementsFrom(illuminance.children());
    }

    void appendLight(const LightSpec& light, StatementCompound& block)
    {
        std::vector<CString> macros;
        block.appendLiteralStatement("\n// LIGHT-SPECIFIC UNIFORMS.\n//");
        for (const ShadingAttribute& input : light.spec->inputs())
        {
            if (!(input.range() == kUniformRange))
                continue;
            const CString type = dataTypeName(input.dataType());
            const CString full = krString::plus(light.name, input.name());
            krString::plusEqual(uniforms, text({"\tuniform ", type, " ", full, fTarget.uniformEnd}));
            if (fTarget.samplersAreMacros && isSampler(input.dataType()))
            {
                block.appendLiteralStatement(text({"#define ", input.name(), " ", full, "\n"}));
                macros.push_back(input.name());
            }
            else
                block.appendLiteralStatement(text({type, " ", input.name(), " = ", full, ";"}));
        }
        block.appendLiteralStatement("\n// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.");
        block.appendStatementsFrom(light.spec->body().statement(0)->children());
        for (const CString& macro : macros)
            block.appendLiteralStatement(krString::plus("#undef ", macro));
    }

    const SplicerTarget& fTarget;
    const std::vector<LightSpec>& fLights;
};

} // namespace

SplicedFragment spliceLights(const SplicerTarget& target, const ShadingNodeSpec& material,
                             const std::vector<LightSpec>& lights, const CString& aliases)
{
    ShadingNodeSpec copy(kGenerated);
    copy.cloneFrom(material);
    SplicedFragment fragment;
    Splicer splicer(target, lights);
    splicer.expandAll(copy.body());
    fragment.lightUniforms = splicer.uniforms;
    StatementCompound& outer = copy.body().statement(0)->children();
    Statement* first = outer.insertNewStatementBefore(0);
    first->setType(StatementType::Literal);
    first->setText(aliases, true);
    outer.appendLiteralStatement(target.result);
    fragment.body = printed(copy.body(), "");
    return fragment;
}
