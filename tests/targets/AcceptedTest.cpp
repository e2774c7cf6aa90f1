// Every material, for every target that its row can take: accepted by krender-targets and by the target's checker.
#include "TargetPrograms.h"

#include "frontend/ProgramGenerator.h"
#include "shadergen/Scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

/// What the front end says where a target's row cannot take a material.
bool isRefused(const std::string& problems)
{
    return problems.find("cannot do this") != std::string::npos || problems.find("no room left") != std::string::npos ||
           problems.find("no register left") != std::string::npos;
}

/// Compiles for all targets.
/// @return  how many of them refused the material
unsigned expectAccepted(const Request& request, const std::string& about)
{
    unsigned refused = 0;
    for (const Target* target : vulkanTargets())
    {
        const TargetProgram program = compileFor(request, *target);
        if (isRefused(program.problems))
        {
            EXPECT_NE(target->lacks, kLacksNothing) << about << " for " << target->name << "\n" << program.problems;
            ++refused;
            continue;
        }
        EXPECT_EQ(program.problems, "") << about << " for " << target->name;
        EXPECT_EQ(faultsOf(program, *target), "") << about << " for " << target->name;
    }
    return refused;
}

std::vector<std::string> allMaterials()
{
    std::vector<std::string> names = scenes::materialNames();
    for (const std::string& name : scenes::fullNamesIn("materials"))
        names.push_back(name);
    return names;
}

class ShippedMaterial : public testing::TestWithParam<std::string>
{
};

TEST_P(ShippedMaterial, IsAcceptedForEveryTarget)
{
    const std::vector<std::string> lights = scenes::fullNamesIn("lights");
    const std::string& light = lights[GetParam().size() % lights.size()];
    expectAccepted(shippedRequest(GetParam(), light), light);
}

INSTANTIATE_TEST_SUITE_P(All, ShippedMaterial, testing::ValuesIn(allMaterials()),
                         [](const auto& given) { return given.param; });

TEST(GeneratedPrograms, AreAcceptedForEveryTarget)
{
#ifdef __SANITIZE_ADDRESS__
    constexpr unsigned kPrograms = 5;
#else
    constexpr unsigned kPrograms = 60;
#endif
    unsigned refused = 0;
    for (unsigned seed = 1; seed <= kPrograms && !testing::Test::HasFailure(); ++seed)
    {
        const std::string source = generateProgram(seed, false).source;
        refused += expectAccepted(requestOf(source), source);
    }
    EXPECT_LT(refused, kPrograms * 5 / 2); // of seven targets
}

// Words that one of the languages keeps, calls, or makes up when it is translated to; none may fail a tool, and hosts
// find each input under the name that the interface tells.
const std::vector<std::string> kOddNames{
    "_1",         "_a",        "a__b",     "gl",         "gl_Position", "kr",        "kr_Vertex",  "Vertex",   "Normal",
    "sample",     "buffer",    "patch",    "smooth",     "resource",    "uint",      "texture",    "sampler",  "Texture2D",
    "cbuffer",    "register",  "half",     "float3x3",   "min16float",  "lerp",      "frac",       "mad",      "saturate",
    "constant",   "device",    "thread",   "kernel",     "main0",       "main0_in",  "stage_in",   "M_PI_F",   "INFINITY",
    "FLT_MAX",    "METAL_X",   "GL_ES",    "VULKAN",     "and",         "xor",       "constexpr",  "nullptr",  "typename",
    "fma",        "round",     "mix",      "inverse",    "transpose",   "spvFract",  "SPIRV_Cross_Input",      "discard_fragment",
    "average",    "param_1",   "type_1",   "color_1",    "in",          "precise",   "packed_float3", "program", "line"};

std::string oneOf(const std::vector<std::string>& names, const char* before, const char* behind)
{
    std::string text;
    for (const std::string& name : names)
        if (name != "constant" && name != "mix") // KRSL's own, and called here
            text += before + name + behind;
    return text;
}

TEST(OddNames, AreUniformsVariablesAndFunctionsOfEveryTarget)
{
    const Request uniforms = requestOf("material m(" + oneOf(kOddNames, "uniform float ", ", ") +
                                       "out float4 outRGBA)\n{\nfloat sum = 0;\n" + oneOf(kOddNames, "sum += ", ";\n") +
                                       "outRGBA = float4(sum);\n}\n");
    EXPECT_EQ(expectAccepted(uniforms, "uniforms"), 0u);
    const Request variables = requestOf("material m(uniform float u, out float4 outRGBA)\n{\nfloat sum = 0;\n" +
                                        oneOf(kOddNames, "float ", " = mix(u, sum, 0.5); sum += fract(sum);\n") +
                                        oneOf(kOddNames, "sum += ", ";\n") + "outRGBA = float4(sum);\n}\n");
    EXPECT_EQ(expectAccepted(variables, "variables"), 0u);
    const Request functions =
        requestOf(oneOf(kOddNames, "float ", "(float x, float3 y) { return x + y.x; }\n") +
                  "material m(uniform float u, out float4 outRGBA)\n{\nfloat sum = 0;\n" +
                  oneOf(kOddNames, "sum += ", "(u, float3(sum));\n") + "outRGBA = float4(sum);\n}\n");
    EXPECT_EQ(expectAccepted(functions, "functions"), 0u);
}

TEST(OddNames, AreSamplersAndVertexInputsOfEveryTarget)
{
    for (std::size_t i = 0; i + 4 <= kOddNames.size(); i += 4)
    {
        const std::vector<std::string> names(kOddNames.begin() + static_cast<std::ptrdiff_t>(i),
                                             kOddNames.begin() + static_cast<std::ptrdiff_t>(i) + 4);
        const Request request =
            requestOf("material m(" + oneOf(names, "uniform sampler2D s_", ", ") + oneOf(names, "vertex float2 ", ", ") +
                      "out float4 outRGBA)\n{\nfloat2 sum = float2(0);\n" + oneOf(names, "sum += ", ";\n") +
                      oneOf(names, "sum += texture2D(s_", ", sum).xy;\n") + "outRGBA = float4(sum, sum);\n}\n");
        EXPECT_EQ(expectAccepted(request, names[0]), 0u);
    }
}

struct Refusal
{
    const char* what;
    const char* source;
    const char* target;
    const char* problem;
};

TEST(Targets, RefuseAtTheSourceWhatTheyCannotDo)
{
    const std::string before = "material m(uniform float u, uniform int n, out float4 outRGBA)\n{\nfloat a[3];\n";
    const std::string behind = "\noutRGBA = float4(a[0]);\n}\n";
    const char* const kLoop = "its loops count a variable from a constant to a constant";
    const char* const kIndex = "its indices are made of constants";
    const std::vector<Refusal> rows{
        {"counting loop", "for (int i = 0; i < 3; i++) a[i] = a[2 - i] + u;", "essl100", ""},
        {"float loop", "for (float t = 1; t > 0.5; t -= 0.25) { a[0] += t; }", "essl100", ""},
        {"open loop", "for (int i = 0; i < n; i++) a[0] += u;", "essl100", kLoop},
        {"open loop elsewhere", "for (int i = 0; i < n; i++) a[n] += u;", "essl300", ""},
        {"changed counter", "for (int i = 0; i < 3; i++) { a[0] += u; i += 1; }", "essl100", kLoop},
        {"turned condition", "for (int i = 0; 3 > i; i++) a[0] += u;", "essl100", kLoop},
        {"while", "while (a[0] < u) a[0] += 1;", "essl100", kLoop},
        {"do", "do a[0] += 1; while (a[0] < u);", "essl100", kLoop},
        {"open index", "a[n] = 1;", "essl100", kIndex},
        {"open component", "a[0] = float3(u)[n];", "essl100", kIndex},
        {"constant index", "const int k = 1; a[k + 1] = 1;", "essl100", ""},
    };
    for (const Refusal& row : rows)
    {
        const TargetProgram program = compileFor(requestOf(before + row.source + behind), *findTarget(row.target));
        EXPECT_NE(program.problems.find(row.problem), std::string::npos) << row.what << "\n" << program.problems;
        EXPECT_EQ(program.problems.empty(), *row.problem == '\0') << row.what << "\n" << program.problems;
        if (*row.problem == '\0')
        {
            EXPECT_EQ(faultsOf(program, *findTarget(row.target)), "") << row.what;
        }
    }
    const auto many = [](unsigned count, const std::string& type, const std::string& use)
    {
        std::string inputs;
        for (unsigned i = 0; i < count; ++i)
            inputs += type + " v" + std::to_string(i) + ", ";
        return requestOf("material m(" + inputs + "out float4 outRGBA) { outRGBA = " + use + "; }\n");
    };
    const Target& spirv = *findTarget("spirv");
    for (const auto& [most, type, use] : {std::tuple(12u, "vertex float4", "v0"),
                                          std::tuple(16u, "uniform sampler2D", "texture2D(v0, float2(0))"),
                                          std::tuple((16384u - 208u) / 64u, "uniform matrix4", "v0[0]")})
    {
        EXPECT_EQ(compileFor(many(most, type, use), spirv).problems, "") << type;
        EXPECT_NE(compileFor(many(most + 1, type, use), spirv).problems, "") << type;
    }
}

} // namespace
