// What is just within each limit of nesting and length is read; one more is an error, and the only one.
#include <krender/frontend/Module.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

struct Limited
{
    const char* name;
    const char* before;
    const char* piece; ///< again and again
    const char* middle;
    const char* closing; ///< as often
    const char* after;
    unsigned most;
    const char* error; ///< of one piece more
};

void PrintTo(const Limited& limited, std::ostream* out) { *out << limited.name; }

class Limits : public testing::TestWithParam<Limited>
{
};

constexpr unsigned kDeepest = 255; // within the function's own block

constexpr Limited kLimits[] = {
    {"Blocks", "", "{", "", "}", "", kDeepest, "deep-nesting"},
    {"Ifs", "", "if (x > 0.0) ", ";", "", "", kDeepest, "deep-nesting"},
    {"Elses", "", "if (x > 0.0) ; else { ", ";", "}", "", kDeepest / 2, "deep-nesting"},
    {"Fors", "", "for (;;) ", ";", "", "", kDeepest, "deep-nesting"},
    {"Whiles", "", "while (true) ", ";", "", "", kDeepest, "deep-nesting"},
    {"Dos", "", "do ", ";", " while (x > 0.0);", "", kDeepest, "deep-nesting"},
    {"Parentheses", "x = ", "(", "x", ")", ";", kDeepest, "deep-nesting"},
    {"Signs", "x = ", "- ", "x", "", ";", kDeepest, "deep-nesting"},
    {"Calls", "x = ", "abs(", "x", ")", ";", kDeepest, "deep-nesting"},
    {"Constructors", "x = ", "float(", "x", ")", ";", kDeepest, "deep-nesting"},
    {"Indices", "int a[2]; a[0] = a[1] = 0; x = ", "a[", "0", "]", ";", kDeepest, "deep-nesting"},
    {"Choices", "x = ", "x > 0.0 ? 1.0 : ", "x", "", ";", 2047, "long-expression"},
    {"Assignments", "float y = x; ", "y = ", "x", "", "; x = y;", 4096, "long-expression"},
    {"ElseIfs", "if (x > 0.0) ;", " else if (x > 1.0) ;", "", "", "", 250, "long-chain"},
    {"ElseIfsWithin", "", "if (x > 0.0) ; else if (x > 1.0) ; else if (x > 2.0) ; else { ", ";", "}", "", 125,
     "long-chain"},
    {"Operators", "x = x", " + x", "", "", ";", 4095, "long-expression"},
    {"Names", "float a", "b", " = x;", "", "", 1023, "long-word"},
};

std::vector<std::string> errorsOf(const Limited& limited, unsigned count)
{
    std::string source = "float f(float x)\n{\n    ";
    source += limited.before;
    for (unsigned i = 0; i < count; ++i)
        source += limited.piece;
    source += limited.middle;
    for (unsigned i = 0; i < count; ++i)
        source += limited.closing;
    source.append(limited.after).append("\n    return x;\n}\n");
    std::vector<std::string> names;
    const krFrontend::Module module = krFrontend::Module::readText("limit.krs", source);
    for (const krFrontend::Diagnostic& diagnostic : module.diagnostics())
        if (diagnostic.severity == krFrontend::Severity::Error)
            names.emplace_back(diagnostic.name);
    return names;
}

TEST_P(Limits, HoldToTheLast)
{
    const Limited& limited = GetParam();
    EXPECT_EQ(errorsOf(limited, limited.most), std::vector<std::string>{});
    for (const unsigned count : {limited.most + 1, limited.most * 100})
    {
        EXPECT_EQ(errorsOf(limited, count), std::vector<std::string>(1, limited.error)) << count;
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Limits, testing::ValuesIn(kLimits),
                         [](const auto& given) { return std::string(given.param.name); });

TEST(LimitsOfPrograms, HoldForTheirBytes)
{
    std::string source = "light l(out float3 outLightDiffuseColor) { outLightDiffuseColor = float3(1.0); }\n"
                         "material m(out float4 outRGBA)\n{\n    outRGBA = float4(1.0);\n    illuminance\n    {\n";
    for (unsigned i = 0; i < 20000; ++i)
        source += "        outRGBA.rgb += gLightDiffuseColor;\n";
    const krFrontend::Module module = krFrontend::Module::readText("large.krs", source + "    }\n}\n");
    krFrontend::ProgramRequest request{&module, "m", {}, false};
    for (unsigned i = 0; i < 40; ++i)
        request.lights.push_back({&module, "l", std::string("l").append(std::to_string(i))});
    for (const Target& target : targets())
    {
        std::vector<krFrontend::ProgramDiagnostic> problems;
        EXPECT_FALSE(compileProgram(request, target, problems)) << target.name;
        ASSERT_EQ(problems.size(), 1u) << target.name;
        EXPECT_EQ(problems[0].diagnostic.name, "large-program");
    }
}

} // namespace
