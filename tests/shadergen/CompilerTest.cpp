// What the golden programs do not show: specs that a host has built itself.
#include "Scenes.h"

#include <krender/platform/String.h>
#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

using krShadingDag::StatementCompound;
using krShadingDag::StatementType;
using scenes::compile;
using scenes::parse;

namespace
{

unsigned count(const std::string& text, const std::string& piece)
{
    unsigned found = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1))
        ++found;
    return found;
}

scenes::Spec nestedBlocks(unsigned depth)
{
    scenes::Spec material = parse("material m(out float4 o) { }");
    StatementCompound* level = &material->body().statement(0)->children();
    for (unsigned i = 1; i < depth; ++i)
    {
        level->appendStatement(nullptr)->setType(StatementType::Block);
        level = &level->statement(0)->children();
    }
    level->appendLiteralStatement("bottom");
    return material;
}

struct Target
{
    const char* name;
    scenes::Compile compiler;
    const char* result;
    friend std::ostream& operator<<(std::ostream& out, const Target& target) { return out << target.name; }
};

class EachTarget : public testing::TestWithParam<Target>
{
protected:
    static std::string fragment(const scenes::Spec& material, const std::vector<LightSpec>* lights)
    {
        return compile(GetParam().compiler, *material, lights).fragment;
    }
};

INSTANTIATE_TEST_SUITE_P(Compilers, EachTarget,
                         testing::Values(Target{"Cg", compileMaterialToCg, "return outRGBA;"},
                                         Target{"Glsl", compileMaterialToGlsl, "gl_FragColor = outRGBA;"}),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace

TEST_P(EachTarget, MaterialsWithoutABodyGiveAnEmptyOne)
{
    const std::string program = fragment(parse("material m(uniform float shine, out float4 c);"), nullptr);
    EXPECT_EQ(count(program, "\tuniform float shine"), 1u);
    EXPECT_EQ(count(program, "outRGBA"), 0u);
}

TEST_P(EachTarget, TheFirstStatementHoldsAliasesAndResult)
{
    const scenes::Spec light = parse("light l(out float3 o) { lit = 1; }");
    const std::vector<LightSpec> lights{{light.get(), "a"}, {light.get(), "b"}};
    const std::vector<LightSpec> none;
    const struct
    {
        const char* name;
        StatementType type;
        const std::vector<LightSpec>* lights;
        const char* above;
        const char* below;
        unsigned times;
    } cases[] = {
        {"block", StatementType::Block, &lights, "{\n\t// GLOBAL", "\n}\n{\n\tlater = 3;", 1},
        {"if", StatementType::If, &lights, "if (x)\n{\n\t// GLOBAL", "\n}\n{\n\tlater = 3;", 1},
        {"else", StatementType::Else, nullptr, "else\n{\t// GLOBAL", "\n}\n{\n\tlater = 3;", 1},
        {"illuminance that stays", StatementType::Illuminance, nullptr, "illuminance\n{\n\t// GLOBAL",
         "\n}\n{\n\tlater = 3;", 1},
        {"first light's block", StatementType::Illuminance, &lights, "{\n\t// GLOBAL", "\n}\n{\n\t// LIGHT-", 1},
        {"block after an illuminance that goes", StatementType::Illuminance, &none, "{\n\t// GLOBAL", "\n}\n", 1},
        {"simple statement", StatementType::Opaque, &lights, "if (x)\n{\n\tlater = 3;", "", 0},
        {"unknown statement", static_cast<StatementType>(6), &lights, "TYPE!!!\n{\n\tlater = 3;", "", 0},
    };
    for (const auto& c : cases)
    {
        const scenes::Spec material = parse("material m(out float4 o) { first = 2; }");
        material->body().appendStatementsFrom(parse("float m(float a) { later = 3; }")->body());
        material->body().statement(0)->setType(c.type);
        material->body().statement(0)->setText("if (x)", true);
        const std::string program = fragment(material, c.lights);
        EXPECT_EQ(count(program, c.above), 1u) << c.name << program;
        EXPECT_EQ(count(program, "// GLOBAL"), c.times) << c.name << program;
        EXPECT_EQ(count(program, std::string("\n\n\t") + GetParam().result + c.below), c.times) << c.name << program;
    }
}

TEST_P(EachTarget, BlocksNestedTooDeepLeaveATextInTheProgram)
{
    const std::string deepest = fragment(nestedBlocks(10'000), nullptr);
    EXPECT_EQ(count(deepest, "bottom"), 1u);
    EXPECT_EQ(count(deepest, "TOO DEEP!"), 0u);
    const std::string tooDeep = fragment(nestedBlocks(200'000), nullptr);
    EXPECT_EQ(count(tooDeep, "bottom"), 0u);
    EXPECT_EQ(count(tooDeep, "\tBLOCKS NESTED TOO DEEP!\n"), 1u);
    EXPECT_EQ(count(tooDeep, "{"), count(deepest, "{")) << "cut at the same depth";
}
