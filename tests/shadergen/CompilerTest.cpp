#include "PlainSplicer.h"
#include "Scenes.h"

#include <krender/shadergen/InterpolantBank.h>
#include <krender/shading/Statement.h>

#include <gtest/gtest.h>

#include <random>

using scenes::compile;
using scenes::parse;
using scenes::Programs;

namespace
{

struct Target
{
    const char* name;
    scenes::Compile compiler;
    plain::Target words;
    const char* uniformsHead;
    const char* aliases;
};

const Target kTargets[] = {
    {"Cg", compileMaterialToCg, plain::kCg, "\t//NODE-SPECIFIC UNIFORMS\n\t//\n",
     "// GLOBAL AND ALIASED VARIABLES\n//\nfloat4 outRGBA;\nfloat3 gWorldNormal = IN.gWorldNormal;\n"
     "float3 gWorldPos = IN.gWorldPos;\nfloat3 gWorldTangent = IN.gWorldTangent;\n"},
    {"Glsl", compileMaterialToGlsl, plain::kGlsl, "\n\n//NODE-SPECIFIC UNIFORMS\n//\n",
     "// GLOBAL AND ALIASED VARIABLES\n//\nvec4 outRGBA;\nvec3 gWorldNormal = var_gWorldNormal;\n"
     "vec3 gWorldTangent = var_gWorldTangent;\n"},
};

bool contains(const std::string& text, const std::string& piece) { return text.find(piece) != std::string::npos; }

unsigned count(const std::string& text, const std::string& piece)
{
    unsigned found = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1))
        ++found;
    return found;
}

class EachTarget : public testing::TestWithParam<Target>
{
};

INSTANTIATE_TEST_SUITE_P(Compilers, EachTarget, testing::ValuesIn(kTargets),
                         [](const auto& test) { return std::string(test.param.name); });

/// A material with so many per-vertex inputs of one type, called in1, in2 and so on.
scenes::Spec materialWithInputs(const char* type, unsigned inputs)
{
    std::string source = "material m(";
    for (unsigned i = 1; i <= inputs; ++i)
        source += "vertex " + std::string(type) + " in" + std::to_string(i) + ", ";
    return parse(source + "out float4 c) { outRGBA = c; }");
}

/// Writes materials of nested blocks at random, always the same ones.
class SourceWriter
{
public:
    std::string material()
    {
        fText = "material m(uniform float u, uniform:vertex float other, out float4 c) {";
        statements(4, 2);
        return fText + "}";
    }

    unsigned below(unsigned bound) { return static_cast<unsigned>(fRandom() % bound); }

private:
    void statements(unsigned depth, unsigned illuminances)
    {
        for (unsigned n = below(4); n > 0; --n)
            statement(depth, illuminances);
    }

    void braced(const char* head, unsigned depth, unsigned illuminances)
    {
        fText += std::string(head) + "{";
        statements(depth - 1, illuminances);
        fText += "}\n";
    }

    void statement(unsigned depth, unsigned illuminances)
    {
        switch (depth == 0 ? 0 : below(7))
        {
        case 1:
            return braced("", depth, illuminances);
        case 2:
            return braced("if (u > 0.5) ", depth, illuminances);
        case 3:
            fText += "if (u < 0.2) ";
            statement(depth - 1, illuminances);
            return braced("else ", depth, illuminances);
        case 4:
            fText += "else ";
            return statement(depth - 1, illuminances);
        case 5:
        case 6:
            if (illuminances > 0)
                return braced("illuminance ", depth, illuminances - 1);
            [[fallthrough]];
        default:
            fText += "c = " + std::to_string(below(100)) + ";\n   ";
        }
    }

    std::string fText;
    std::mt19937 fRandom{20};
};

} // namespace

TEST_P(EachTarget, PrintsWhatCloningAndSplicingGives)
{
    std::vector<scenes::Spec> lights;
    lights.push_back(nullptr);
    for (const char* source :
         {"light far(uniform float a, out float3 o);", "light plainLight(out float3 o) { o = 1; }",
          "light many(uniform float3 a, float b, uniform sampler2D s, vertex float v, uniform sampler1DShadow t, "
          "sampler3D w, "
          "uniform matrix4 m, out float3 o) { o = a; { o = m; } }",
          "light nested(uniform float a, out float3 o) { illuminance { o = a; } if (a > 1) illuminance { } }"})
        lights.push_back(parse(source));

    SourceWriter writer;
    unsigned longest = 0;
    for (unsigned round = 0; round < 400; ++round)
    {
        const scenes::Spec material = parse(writer.material());
        std::vector<LightSpec> chosen;
        for (unsigned i = writer.below(4); i > 0; --i)
            chosen.push_back({lights[writer.below(5)].get(), krString::CString(static_cast<char>('k' + i))});
        const std::vector<LightSpec>* given = round % 10 == 0 ? nullptr : &chosen;

        const std::string program = compile(GetParam().compiler, *material, given).fragment;
        const plain::Fragment expected = plain::spliceLights(GetParam().words, *material, given, GetParam().aliases);
        const std::string head = GetParam().uniformsHead;
        const std::size_t uniforms = program.find(head) + head.size();
        const std::size_t materialUniforms = program.find("\n\t// MATERIAL\n", uniforms);
        ASSERT_EQ(program.substr(uniforms, materialUniforms - uniforms), expected.lightUniforms.asChar());
        ASSERT_EQ(program.substr(program.size() - expected.body.length()), expected.body.asChar());
        longest = std::max(longest, expected.body.length());
    }
    EXPECT_GT(longest, 10'000u) << "the random materials hardly nest";
}

TEST_P(EachTarget, NullLightsKeepIlluminanceBlocksAndAnEmptyListRemovesThem)
{
    const scenes::Spec material = parse("material m(out float4 c) { illuminance { c += 1; } outRGBA = c; }");
    const std::vector<LightSpec> none;
    const std::string kept = compile(GetParam().compiler, *material, nullptr).fragment;
    EXPECT_TRUE(contains(kept, "\tilluminance\n\t{\n\t\tc += 1;\n\t}\n\toutRGBA = c;\n"));
    const std::string removed = compile(GetParam().compiler, *material, &none).fragment;
    EXPECT_TRUE(contains(removed, "\n\n\toutRGBA = c;\n"));
    EXPECT_FALSE(contains(removed, "c += 1;"));
}

TEST_P(EachTarget, EachIlluminanceBlockDeclaresItsLightsUniforms)
{
    const scenes::Spec light = parse("light l(uniform float a, out float3 o) { o = a; }");
    const std::vector<LightSpec> lights{{light.get(), "key"}};
    const scenes::Spec material = parse("material m(out float4 c) { illuminance { } { illuminance { } } }");
    EXPECT_EQ(count(compile(GetParam().compiler, *material, &lights).fragment, "uniform float keya"), 2u);
}

TEST_P(EachTarget, SpecsWithoutABodyAddNothing)
{
    const scenes::Spec declared = parse("material m(uniform float shine, out float4 c);");
    const std::vector<LightSpec> noLights{{declared.get(), "a"}, {nullptr, "b"}};
    const Programs programs = compile(GetParam().compiler, *declared, &noLights);
    EXPECT_TRUE(contains(programs.fragment, "\tuniform float shine"));
    EXPECT_FALSE(contains(programs.fragment, "outRGBA"));

    const scenes::Spec lit = parse("material m(out float4 c) { illuminance { c = 1; } }");
    const std::vector<LightSpec> none;
    EXPECT_EQ(compile(GetParam().compiler, *lit, &noLights).fragment,
              compile(GetParam().compiler, *lit, &none).fragment);
}

TEST_P(EachTarget, DeclaresOnlyInputsOfExactlyOneFrequency)
{
    const scenes::Spec material = parse("material m(constant float q1, fragment float q2, float q3, "
                                        "uniform:vertex float q4, vertex:uniform float q5, uniform float3 gWorldPos, "
                                        "vertex float3 gWorldTangent, out float4 c) { c = 1; }");
    const scenes::Spec bare = parse("material m(out float4 c) { c = 1; }");
    const Programs programs = compile(GetParam().compiler, *material, nullptr);
    EXPECT_EQ(programs.vertex, compile(GetParam().compiler, *bare, nullptr).vertex);
    EXPECT_EQ(programs.fragment, compile(GetParam().compiler, *bare, nullptr).fragment);
}

TEST_P(EachTarget, LeavesTheMaterialAsItWas)
{
    const scenes::Spec material = scenes::parseMaterial("terrain");
    const std::string before = material->body().toString("", "\t").asChar();
    const std::vector<LightSpec> lights = scenes::lightsFor("terrain", 3);
    (void)compile(GetParam().compiler, *material, &lights);
    EXPECT_EQ(material->body().toString("", "\t").asChar(), before);
}

struct Overflow
{
    const char* type;
    unsigned inputs;
    const char* lastCopy;
};

class CgOverflow : public testing::TestWithParam<Overflow>
{
};

TEST_P(CgOverflow, LeavesItsTextInTheProgram)
{
    const Programs programs =
        compile(compileMaterialToCg, *materialWithInputs(GetParam().type, GetParam().inputs), nullptr);
    EXPECT_TRUE(contains(programs.vertex, GetParam().lastCopy)) << programs.vertex;
}

INSTANTIATE_TEST_SUITE_P(
    Cg, CgOverflow,
    testing::Values(Overflow{"float", 7, "\tOUT._TEXCOORD4.z = IN.in7.x;\n"},
                    Overflow{"float", 8, "\tOUT._TEXCOORD4.w = 0;\n"},
                    Overflow{"float2", 8, "\tOUT._TEXCOORD6.zw = float2(0,0);\n"},
                    Overflow{"float3", 6, "\tOUT._TEXCOORDUNABLE TO ALLOCATE INTERPOLANT! = IN.in6.xyz;\n"},
                    Overflow{"float3", 8, "\tOUT._TEXCOORDUNABLE TO ALLOCATE INTERPOLANT! = float3(0,0,0);\n"},
                    Overflow{"float4", 8, "\tOUT._TEXCOORDUNABLE TO ALLOCATE INTERPOLANT! = float4(0,0,0,0);\n"},
                    Overflow{"bool", 8, " = A2V REGISTER OVERFLOW, NOT A RECOGNIZED DATATYPE;\n"},
                    Overflow{"matrix4", 1, "INTERPOLANT! = IN.in1.xyzw;\n"},
                    Overflow{"int", 1, "\tOUT._TEXCOORD0. = IN.in1.;\n"}),
    [](const auto& test) { return test.param.type + std::to_string(test.param.inputs); });

TEST(GlslMaterialCompiler, HasNoLimitOfPerVertexInputs)
{
    const Programs programs = compile(compileMaterialToGlsl, *materialWithInputs("float3", 10), nullptr);
    EXPECT_TRUE(contains(programs.vertex, "\tattribute vec3 in10;\n"));
    EXPECT_TRUE(contains(programs.vertex, "\nvar_in10 = in10;\n"));
    EXPECT_TRUE(contains(programs.fragment, "\nvarying vec3 var_in10;\n"));
    EXPECT_TRUE(contains(programs.fragment, "\tfloat3 in10 = var_in10;\n"));
}
