#include "FrontEnds.h"

#include "Scenes.h"

#include <krender/frontend/Program.h>
#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using scenes::Programs;

namespace
{

/// One edit that makes a pair of programs wrong.
struct Fault
{
    const char* what;
    std::vector<std::string Programs::*> programs;
    const char* from;
    const char* to;
};

const std::vector<std::string Programs::*> kVertex{&Programs::vertex};
const std::vector<std::string Programs::*> kFragment{&Programs::fragment};
const std::vector<std::string Programs::*> kBoth{&Programs::vertex, &Programs::fragment};

const Fault kGlslFaults[] = {
    {"unknown variable", kFragment, "gl_FragColor = outRGBA", "gl_FragColor = outRGB"},
    {"lost semicolon", kFragment, "vec4 outRGBA;", "vec4 outRGBA"},
    {"lost brace", kFragment, "void main() \n{", "void main() \n"},
    {"lost type name", kFragment, "#define float3 vec3\n", ""},
    {"too few components", kFragment, "gWorldNormal = var_gWorldNormal", "gWorldNormal = var_gWorldNormal.xy"},
    {"undeclared input", kVertex, "\tattribute vec3 gObjTangent;\n", ""},
    {"stages that disagree", kVertex, "void main()", "uniform float gEyePos;\nvoid main()"},
};

const Fault kCgFaults[] = {
    {"unknown variable", kFragment, "return outRGBA;", "return outRGB;"},
    {"lost semicolon", kFragment, "float4 outRGBA;", "float4 outRGBA"},
    {"lost brace", kFragment, ") : COLOR\n{", ") : COLOR\n"},
    {"unknown member", kFragment, "= IN.gWorldNormal;", "= IN.gWorldNorm;"},
    {"unknown function", kVertex, "mul(modelViewProj", "mull(modelViewProj"},
    {"unknown matrix", kVertex, "glstate.matrix.mvp", "glstate.matrix.mvq"},
    {"wrong result", kVertex, "return OUT;", "return IN;"},
    {"no semantic", kBoth, "gObjNormal\t: NORMAL;", "gObjNormal;"},
    {"unknown semantic", kBoth, ": NORMAL;", ": NORMALS;"},
    {"doubled semantic", kBoth, "gWorldTangent\t\t: TEXCOORD2", "gWorldTangent\t\t: TEXCOORD1"},
    {"wrong semantic", kBoth, "gObjTangent\t: TEXCOORD0", "gObjTangent\t: TEXCOORD7"},
    {"comma before the parenthesis", kFragment, "vert2frag IN)", "vert2frag IN,)"},
    {"lost parameter", kFragment, "uniform float4 gEyePos,", "uniform float4 gEyePos,,"},
    {"no colour", kFragment, ") : COLOR\n", ")\n"},
    {"structs that disagree", kVertex, "\tfloat3 gObjTangent", "\tfloat4 gObjTangent"},
};

class ShippedPrograms : public testing::TestWithParam<std::string>
{
protected:
    using Check = std::string (*)(const Programs&);

    void areAcceptedUnlessFaulty(scenes::Compile compiler, Check check, const auto& faults)
    {
        for (const unsigned lights : {0u, 1u, 3u})
        {
            const Programs programs = scenes::compileShipped(compiler, GetParam(), lights);
            EXPECT_EQ(check(programs), "") << lights << " lights\n" << programs.vertex << programs.fragment;
        }
        const Programs programs = scenes::compileShipped(compiler, GetParam(), 3);
        for (const Fault& fault : faults)
        {
            Programs faulty = programs;
            for (const auto program : fault.programs)
                EXPECT_TRUE(scenes::replaceFirst(faulty.*program, fault.from, fault.to)) << fault.what;
            EXPECT_NE(check(faulty), "") << fault.what << " passes\n";
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Materials, ShippedPrograms, testing::ValuesIn(scenes::materialNames()),
                         [](const auto& test) { return test.param; });

} // namespace

TEST_P(ShippedPrograms, AreGlsl) { areAcceptedUnlessFaulty(compileMaterialToGlsl, frontends::glslFaults, kGlslFaults); }

TEST_P(ShippedPrograms, AreCg) { areAcceptedUnlessFaulty(compileMaterialToCg, frontends::cgFaults, kCgFaults); }

TEST(CgInputs, HaveSemanticsOfTheirOwn)
{
    const scenes::Spec spec =
        scenes::parse("material m(vertex float2 a, vertex float2 b, out float4 c) { outRGBA.xy = a + b; }");
    Programs programs = scenes::compile(compileMaterialToCg, *spec, nullptr);
    EXPECT_EQ(frontends::cgFaults(programs), "");
    for (std::string* program : {&programs.vertex, &programs.fragment})
        EXPECT_TRUE(scenes::replaceFirst(*program, "b\t\t: TEXCOORD2", "b\t\t: TEXCOORD1"));
    EXPECT_NE(frontends::cgFaults(programs), "");
}

TEST(CgOverflow, StopsTheCompiler)
{
    const scenes::Spec crowded = scenes::parse("material m(vertex float4 a, vertex float4 b, vertex float4 d, "
                                               "vertex float4 e, vertex float4 f, vertex float4 g, out float4 c) "
                                               "{ outRGBA = a + g; }");
    const Programs programs = scenes::compile(compileMaterialToCg, *crowded, nullptr);
    EXPECT_NE(frontends::cgFaults({programs.vertex, ""}), frontends::cgFaults({"", ""}));
    EXPECT_NE(frontends::cgFaults(programs), "");
}

class FullMaterial : public testing::TestWithParam<std::string>
{
};

TEST_P(FullMaterial, IsAcceptedWithEveryLight)
{
    const auto shipped = [](const std::string& file) { return krFrontend::Module::readFile(KRENDER_SHARE "/" + file); };
    const krFrontend::Module material = shipped("materials/" + GetParam() + ".krs");
    for (const std::string& name : scenes::fullNamesIn("lights"))
    {
        const krFrontend::Module library = shipped("lights/" + name + ".krs");
        const krFrontend::ProgramRequest request{
            &material, "", {{&library, name + "Light", "first"}, {&library, name + "Light", "second"}}, false};
        for (const Target& target : scenes::plainTargets())
        {
            std::vector<krFrontend::ProgramDiagnostic> problems;
            const auto program = krFrontend::compileProgram(request, target, problems);
            ASSERT_TRUE(program && problems.empty()) << name << " for " << target.name;
            const bool isCg = target.language == TargetLanguage::Cg;
            EXPECT_EQ((isCg ? frontends::cgFaults : frontends::glslFaults)({program->vertex, program->fragment}), "")
                << name << " for " << target.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Materials, FullMaterial, testing::ValuesIn(scenes::fullNamesIn("materials")),
                         [](const auto& test) { return test.param; });
