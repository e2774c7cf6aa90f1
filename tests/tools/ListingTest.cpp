#include "CaseName.h"
#include "Program.h"
#include "Schema.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

// Tokens

TEST(Tokens, ShowEveryField)
{
    const Workplace place;
    place.write("x.krs", "float3 a\t= 2.5e1 /\"q\\\n\"; // c\n\xc3 1e+3\r\n");
    const Outcome outcome = place.krslc({"tokens", "x.krs"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "3\t1\t1\t0\t1\t0\t5\t0\tfloat3\n"
                           "4\t1\t8\t7\t1\t0\t0\t0\ta\n"
                           "79\t1\t10\t9\t1\t0\t0\t0\t=\n"
                           "5\t1\t12\t11\t25\t25\t0\t0\t2.5e1\n"
                           "75\t1\t18\t17\t1\t0\t0\t0\t/\n"
                           "6\t1\t19\t18\t1\t0\t0\t0\tq\\\\\\n\n"
                           "59\t2\t1\t23\t1\t0\t0\t0\t;\n"
                           "2\t2\t3\t25\t1\t0\t0\t0\t// c\\n\n"
                           "0\t3\t1\t30\t1\t0\t0\t0\t\\xc3\n"
                           "5\t3\t2\t32\t1\t1\t0\t0\t1e\n"
                           "72\t3\t4\t34\t1\t0\t0\t0\t+\n"
                           "5\t3\t5\t35\t3\t3\t0\t0\t3\n"
                           "0\t4\t1\t38\t1\t0\t0\t0\t\\xff\n"
                           "1\t1\t1\t0\t1\t0\t0\t0\t\n");
}

TEST(Tokens, EndInAnExceptionWhereTheTokenizerFails)
{
    const Outcome outcome = Workplace().krslc({"tokens", "-"}, {.input = "\xef\xbb\xbf"
                                                                         "a \"b"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "4\t1\t1\t0\t1\t0\t0\t0\ta\nEXCEPTION\n"); // a byte-order mark is no part of the text
    EXPECT_EQ(outcome.err, "<stdin>:1:3: error: the source ends within the comment, string or blanks that begin here\n"
                           "a \"b\n  ^\n");
}

// Specs

TEST(Specs, AsJsonTellWhatTheLibraryKnows)
{
    const Workplace place;
    place.write("x.krs",
                "float g(out float b, int a);\nvertex:fragment float3 f(uniform float a) { if (a) { x = \"\xff\"; } "
                "illuminance { } }\n");
    const Outcome outcome = place.krslc({"specs", "x.krs", "--json"});
    EXPECT_EQ(outcome.status, 0);
    const auto expected = nlohmann::json::parse(R"({
        "parsed": true,
        "messages": "error: found no function declaration or definition.\n",
        "problems": [],
        "functions": [
          {"name": "f", "nodeType": 5, "nodeTypeName": "definition", "hasIlluminanceLoop": true,
           "header": "f(\n\t\tuniform float a)\n",
           "body": "{\n\tif (a)\n\t{\n\t\tx = \"\ufffd\";\n\t}\n\tilluminance\n\t{\n\t}\n}\n",
           "inputs": [{"name": "a", "type": 3, "typeName": "float", "minFreq": 2, "maxFreq": 2}],
           "outputs": [{"name": "output", "type": 5, "typeName": "float3", "minFreq": 3, "maxFreq": 4}]},
          {"name": "g", "nodeType": 4, "nodeTypeName": "declaration", "hasIlluminanceLoop": false,
           "header": "g(\n\t\tout constant float b,\n\t\tconstant int a)\n",
           "body": "",
           "inputs": [{"name": "a", "type": 7, "typeName": "int", "minFreq": 1, "maxFreq": 4}],
           "outputs": [{"name": "output", "type": 3, "typeName": "float", "minFreq": 1, "maxFreq": 4},
                       {"name": "b", "type": 3, "typeName": "float", "minFreq": 1, "maxFreq": 4}]}]})");
    EXPECT_EQ(nlohmann::json::parse(outcome.out), expected) << outcome.out;
}

struct Unreadable
{
    const char* about;
    const char* source;
    const char* messages; ///< the parser's own
    std::size_t functions;
    const char* problem; ///< the only one
};

class SpecsReport : public testing::TestWithParam<Unreadable>
{
};

TEST_P(SpecsReport, WhereReadingStopped)
{
    const Outcome outcome = Workplace().krslc({"specs", "-", "--json"}, {.input = GetParam().source});
    EXPECT_EQ(outcome.status, 1);
    const auto document = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(document["parsed"], false);
    EXPECT_EQ(document["messages"], GetParam().messages);
    EXPECT_EQ(document["functions"].size(), GetParam().functions);
    EXPECT_EQ(document["problems"], nlohmann::json::parse(GetParam().problem));
}

INSTANTIATE_TEST_SUITE_P(
    All, SpecsReport,
    testing::Values(Unreadable{"second function", "float f(float a);\nfloat g(float a;\n",
                               "stdlib.krs(line 2, column 1) : error Not a valid data type: ;\n", 1,
                               R"([{"file": "<stdin>", "line": 2, "column": 1, "severity": "error", "name": null,
                                    "text": "Not a valid data type: ;"}])"},
                    Unreadable{"empty statement", "float f(float a) { ; }\n",
                               "stdlib.krs(line 1, column 20) : error Empty statement at line 1, column 20\n", 0,
                               R"([{"file": "<stdin>", "line": 1, "column": 20, "severity": "error",
                                    "name": null,
                                    "text": "Empty statement"}])"}),
    CaseName());

TEST(Specs, ForPeopleShowHeaders)
{
    const Outcome outcome =
        Workplace().krslc({"specs", "/dev/stdin"}, {.input = "light l(out float r) { r = 1; }\nfloat f(float a);\n"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "declaration float f(\n\t\tconstant float a)\ndefinition light l(\n\t\tout constant float r)\n");
}

// Interface

constexpr const char* kShaders = R"(const float3 kTint = float3(0.5);
material ggx(
    uniform float3 color = kTint * 2.0 [[ string label = "Base", float min = 0 ]],
    uniform int steps = 3,
    uniform bool soft = true,
    uniform matrix2 m = matrix2(1.0, 2.0, 3.0, 4.5),
    uniform sampler2D grain [[ string file = "wood.png" ]],
    vertex float2 uv,
    float3 gWorldPos,
    out float4 outRGBA)
{ outRGBA = steps > 2 && soft ? texture2D(grain, mul(m, uv)) : float4(color + gWorldPos, half(0.5)); }
light lamp(out float3 outLightDiffuseColor) { outLightDiffuseColor = float3(1.0); }
float half(float a) { return 0.5 * a; }
float declared(inout float a);
)";

TEST(Interface, ForPeopleIsWrittenLikeASource)
{
    const Outcome outcome = Workplace().krslc({"interface", "-"}, {.input = kShaders});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "material ggx\n"
                           "    uniform float3 color = float3(1, 1, 1)\n"
                           "        label = \"Base\"\n"
                           "        min = 0\n"
                           "    uniform int steps = 3\n"
                           "    uniform bool soft = true\n"
                           "    uniform matrix2 m = matrix2(1, 2, 3, 4.5)\n"
                           "    uniform sampler2D grain\n"
                           "        file = \"wood.png\"\n"
                           "    vertex float2 uv\n"
                           "    float3 gWorldPos\n"
                           "    out float4 outRGBA\n"
                           "light lamp\n"
                           "    out float3 outLightDiffuseColor\n"
                           "float half\n"
                           "    float a\n"
                           "float declared (declared)\n"
                           "    out float a\n");
}

TEST(Interface, AsJsonFollowsItsSchema)
{
    const Outcome outcome = Workplace().krslc({"interface", "-", "--json"}, {.input = kShaders});
    EXPECT_EQ(schemaFault(outcome.out, "krslc-interface"), "");
    const auto list = nlohmann::json::parse(outcome.out);
    ASSERT_EQ(list.size(), 4u);
    EXPECT_EQ(list[0]["arguments"][0], nlohmann::json::parse(R"({"name": "color", "type": "float3", "isOutput": false,
        "minFrequency": "uniform", "maxFrequency": "uniform", "default": [1.0, 1.0, 1.0],
        "metadata": {"label": "Base", "min": 0.0}})"));
    EXPECT_EQ(list[0]["arguments"][1]["default"], 3);
    EXPECT_EQ(list[0]["arguments"][2]["default"], true);
    EXPECT_TRUE(list[0]["arguments"][4]["default"].is_null());
    EXPECT_EQ(list[2]["result"], "float");
    EXPECT_EQ(list[2]["line"], 13);
    EXPECT_EQ(list[3]["hasBody"], false);
}

TEST(Interface, OfASourceWithErrorsIsItsErrors)
{
    const Outcome outcome = Workplace().krslc({"interface", "-", "--json"}, {.input = "float f(flot a);\n"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.starts_with("<stdin>:1:9: error: ")) << outcome.err;
}

// All

TEST(Listings, FailWhereTheyCannotBeWritten)
{
    for (const char* command : {"tokens", "specs", "interface"})
    {
        const Outcome outcome =
            Workplace().krslc({command, "-"}, {.input = "float f(float a);\n", .standardOutput = "/dev/full"});
        EXPECT_EQ(outcome.status, 2) << command;
        EXPECT_EQ(outcome.err, "krslc: error: cannot write standard output: No space left on device\n") << command;
    }
}
