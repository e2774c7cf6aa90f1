#include "CaseName.h"
#include "Program.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <utility>

namespace
{

/// The findings that a text reports, each as "line:column name", the name being "error" for what has none.
std::string findingsIn(const std::string& text)
{
    std::istringstream lines(text);
    std::string all;
    for (std::string line; std::getline(lines, line);)
    {
        const std::size_t place = line.find(':') + 1;
        const std::size_t end = std::min(line.find(": error: "), line.find(": warning: "));
        if (!line.starts_with("x.krs:") || end == std::string::npos)
            continue;
        const std::size_t name = line.find("[-W");
        all += all.empty() ? "" : ", ";
        all += line.substr(place, end - place) + ' ';
        all += name == std::string::npos ? "error" : line.substr(name + 3, line.size() - name - 4);
    }
    return all;
}

struct Case
{
    const char* about;
    const char* source;
    const char* findings;
};

/// Bodies of one function, which begin at column 20 of line 1.
std::string inBody(const std::string& body) { return "float f(float a) { " + body + " }\n"; }

} // namespace

// Errors: the message's place is where a person looks for the fault.

class CheckPlacesErrors : public testing::TestWithParam<Case>
{
};

TEST_P(CheckPlacesErrors, WhereTheFaultIs)
{
    const Workplace place;
    place.write("x.krs", GetParam().source);
    const Outcome outcome = place.krslc({"check", "x.krs"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err.substr(0, outcome.err.find('\n')), std::string("x.krs:") + GetParam().findings);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, CheckPlacesErrors,
    testing::Values(
        Case{"no type", "flot f(float a);", "1:1: error: Unrecognized return data type or shader type: flot"},
        Case{"bad type of the third function", "float f(float a);\nfloat g(float a);\nfloat h(flot a);\n",
             "3:9: error: Not a valid data type: flot"},
        Case{"void argument", "float f(void a);", "1:9: error: Not a valid data type: void"},
        Case{"texture function", "texture2D f(out float a);",
             "1:1: error: Shader type is not allowed in KRSL: texture2D"},
        Case{"number for a name", "float 7(float a);", "1:7: error: Invalid function name"},
        Case{"assignment operator", "float operator+=(float a);", "1:15: error: Expected valid operator symbol"},
        Case{"half an index operator", "float operator[(float a);", "1:16: error: Expected ']'"},
        Case{"no parenthesis", "float f float a);", "1:9: error: Expected '('"},
        Case{"no argument name", "float f(float, float b);", "1:14: error: Expected argument name: ,"},
        Case{"half a range", "float f(uniform: float a);", "1:18: error: Expected maximum frequency specifier."},
        Case{"no output", "void f(float a);", "1:6: error: Function needs at least one output."},
        Case{"text before the end", "float f(float a) b;", "1:18: error: Expected semicolon"},
        Case{"text before the body", "float f(float a) b { x = 1; }", "1:18: error: Expected braces"},
        Case{"input twice", "float f(float a, float a);",
             "1:24: error: input variable already exists: a [-Wduplicate-input]"}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Ends, CheckPlacesErrors,
    testing::Values(
        Case{"in a header", "float g(float a);\nfloat f(float a)",
             "2:1: error: the source ends within this header: a \";\" or a body is missing"},
        Case{"in a statement", "float f(float a) { x = 1;\n  y = f(a)",
             "2:3: error: the source ends within this statement: a \";\" is missing"},
        Case{"in the innermost block", "float f(float a) {\n  if (a) {\n    x = 1;\n",
             "2:10: error: the source ends within the block that begins here"},
        Case{"behind a condition", "float f(float a) { if (a)\n",
             "1:20: error: the source ends before the statement that belongs here"},
        Case{"in a condition", "float f(float a) { if (a; b) x = 1; }",
             "1:25: error: Expected close-parentheses after if statement"},
        Case{"in a comment", "float f(float a);\n /* x *\n", "2:2: error: this comment is not closed"},
        Case{
            "in a comment with a hidden end", "/* a // b */\n",
            "1:1: error: this comment is not closed: a \"//\" within it hides what follows up to the next line, \"*/\" "
            "included"},
        Case{"in a line comment", "float f(float a); // x",
             "1:19: error: the source ends within this comment: a line break "
             "is missing"},
        Case{"in a carried comment", "// a // b\n",
             "1:1: error: this comment does not end: a second \"//\" in a line carries it over the next line"},
        Case{"in a string", "float f(float a) { x = \"abc; }\n", "1:24: error: this string is not closed"}),
    CaseName());

// Warnings: each trap once where it is sprung, and once where something like it is harmless.

class CheckWarns : public testing::TestWithParam<Case>
{
};

TEST_P(CheckWarns, OfExactlyTheTraps)
{
    const Workplace place;
    place.write("x.krs", GetParam().source);
    const Outcome outcome = place.krslc({"check", "x.krs"});
    EXPECT_EQ(findingsIn(outcome.err), GetParam().findings) << outcome.err;
    const bool hasErrors = outcome.err.find(": error: ") != std::string::npos;
    EXPECT_EQ(outcome.status, hasErrors ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    Comments, CheckWarns,
    testing::Values(
        Case{"code behind a comment", "/* c */float f(float a);\n", "1:8 comment-swallows-code, 1:10 error"},
        Case{"code below a comment", "/* c */\nfloat f(float a);\n", "2:1 comment-swallows-code, 2:2 error"},
        Case{"brace behind the last function", "float f(float a);\n/* c */}\n", "2:8 comment-swallows-code"},
        Case{"blanks behind a comment", "/* c */  float f(float a);\n", ""},
        Case{"carriage return behind a comment", "/* c */\r\nfloat f(float a);\r\n", ""},
        Case{"comment at the end", "float f(float a);\n/* c */\n", ""},
        Case{"comment that carries over code", "float g(float a);\n// a // b\nfloat f(float a);\n",
             "2:6 slashes-in-comment"},
        Case{"line of slashes", "float g(float a);\n//////\nfloat f(float a);\n", "2:3 slashes-in-comment"},
        Case{"comment that carries over a comment", "// a // b\n// c\nfloat f(float a);\n", ""},
        Case{"comment that carries over an indented comment", "// a // b\n  // c\nfloat f(float a);\n",
             "1:1 empty-source, 1:6 slashes-in-comment"},
        Case{"three slashes", "/// c\nfloat f(float a);\n", ""},
        Case{"hidden end of a comment", "/* a // b */\nfloat f(float a);\n*/  float g(float a);\n",
             "1:11 hidden-comment-end"},
        Case{"slashes in a string", "float f(float a) { x = \"a//b\n c\"; }\n", "1:26 slashes-in-string"},
        Case{"one slash in a string", "float f(float a) { x = \"a/b\"; }\n", ""}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Headers, CheckWarns,
    testing::Values(
        Case{"missing comma", "float f(float a out float b, float c);\n", "1:17 missing-comma"},
        Case{"reversed ranges", "fragment:uniform float f(vertex:constant float a);\n",
             "1:1 reversed-range, 1:26 reversed-range"},
        Case{"ranges in order", "uniform:fragment float f(uniform:uniform float a);\n", ""},
        Case{"output twice", "void f(out float a, out float a);\n", "1:31 duplicate-input"},
        Case{"input and output of one name", "float f(float a, out float a);\n", "1:28 duplicate-input"},
        Case{"undeclared input",
             "material m(float a, uniform float b, float3 gWorldPos, float4 gEyePos, out float c) { }\n",
             "1:18 undeclared-input"},
        Case{"input of a plain function", "float f(float a) { }\n", ""},
        Case{"reserved inputs",
             "material m(uniform float OUT, vertex float3 gObjNormal, uniform float var_x, out float4 outRGBA) { }\n",
             "1:26 reserved-name, 1:45 reserved-name, 1:71 reserved-name"},
        Case{"eighth vertex input",
             "material m(vertex float a, vertex float b, vertex float c, vertex float d, vertex float e, vertex float "
             "f, "
             "vertex float g, vertex float h, vertex float3 gWorldPos, out float4 r) { }\n",
             "1:137 vertex-registers"},
        Case{"seven vertex inputs too wide to travel",
             "material m(vertex float4 a, vertex float4 b, vertex float4 c, vertex float4 d, vertex float3 e, vertex "
             "float f, "
             "vertex float g, out float4 r) { }\n",
             "1:126 vertex-registers"},
        Case{"many vertex inputs of a light or a declaration",
             "light m(vertex float4 a, vertex float4 b, vertex float4 c, vertex float4 d, vertex float4 e, vertex "
             "float f, "
             "out float4 r) { }\nmaterial n(vertex matrix3 a, out float r);\n",
             ""},
        Case{"vertex inputs of other types",
             "material m(vertex int a, vertex matrix4 b, vertex bool c, out float4 r) { }\n",
             "1:19 vertex-type, 1:33 vertex-type, 1:51 vertex-type"},
        Case{"nothing", "", "1:1 empty-source"}, Case{"only a comment", "// c\n", "1:1 empty-source"}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Bodies, CheckWarns,
    testing::Values(
        Case{"empty statements", "float f(float a) { x = 1;; if (a) ; else {;} }\n",
             "1:26 empty-statement, 1:35 empty-statement, 1:43 empty-statement"},
        Case{"semicolon behind a block", "float f(float a) { { x = 1; }; }\n", "1:30 empty-statement"},
        Case{"for (;;)", "float f(float a) { for (;;) x = 1; }\n", "1:26 empty-statement"},
        Case{"no statements", "float f(float a) { {} if (a) {} else {} }\n", ""},
        Case{"loops with braces",
             "float f(float a) { for (i = 0; i < (3); i++) { x = 1; } }\nfloat g(float a) { while (a) { x = 1; }\n",
             "1:20 braced-loop, 1:57 error"},
        Case{"do with braces", "float f(float a) { do { x = 1; } while (a);\n", "1:20 braced-loop, 1:34 error"},
        Case{"loops without braces",
             "float f(float a) { for (i = 0; i < 3; i++) x += i; while (a) x--; do x--; while (a); }\n", ""},
        Case{"parentheses in a condition", "float f(float a) { if (g(a) > (0)) x = 1; }\n", "1:25 paren-in-condition"},
        Case{"parentheses in a condition before a block", "float f(float a) { if (g(a) > 0) { x = 1; }\n",
             "1:25 paren-in-condition"},
        Case{"exponents", "float f(float a) { x = 1e+5 - 2.5E+3 + 1e5 + 1e-5 + 1e + 5; }\n",
             "1:26 exponent-plus, 1:35 exponent-plus"},
        Case{"illuminance with arguments", "material m(out float r) { illuminance(P, N) { r = 1; }\n",
             "1:27 illuminance-arguments"},
        Case{"illuminance in a light", "light l(out float r) { illuminance { r = 1; } }\n",
             "1:24 illuminance-in-light"},
        Case{"illuminance in a material", "material m(out float r) { illuminance { r = 1; } }\n", ""},
        Case{"else without if", "float f(float a) { else x = 1; if (a) x = 1; y = 1; else x = 2; }\n",
             "1:20 else-without-if, 1:53 else-without-if"},
        Case{"else behind else if", "float f(float a) { if (a) x = 1; else if (b) x = 2; else x = 3; }\n",
             "1:53 else-without-if"},
        Case{"else behind a braced else if", "float f(float a) { if (a) x = 1; else { if (b) x = 2; else x = 3; } }\n",
             ""},
        Case{"dangling else", "float f(float a) { if (a) if (b) x = 1; else x = 2; }\n", "1:41 dangling-else"},
        Case{"else behind a block with an if", "float f(float a) { if (a) { if (b) x = 1; } else x = 2; }\n", ""},
        Case{"missing semicolon before a brace", "float f(float a) { x = 1 }\nfloat g(float a) { y = 2; }\n",
             "1:26 brace-in-statement"},
        Case{"reserved locals",
             "material m(out float4 outRGBA) { float3 gWorldPos = float3(OUT); outRGBA = gWorldPos; }\n",
             "1:41 reserved-name"}),
    CaseName());

// The frame around them.

TEST(Check, PrintsPlaceTextLineAndCaret)
{
    const Workplace place;
    place.write("x.krs", "float f(float a) {\n\tx = \"\xc3\xa9\x01\" 1e+5; ;\n}\n");
    const Outcome outcome = place.krslc({"check", "x.krs"});
    EXPECT_EQ(outcome.err,
              "x.krs:2:14: warning: an exponent takes no plus sign: this is \"1e\", \"+\" and what follows "
              "[-Wexponent-plus]\n"
              "\tx = \"\xc3\xa9\\x01\" 1e+5; ;\n"
              "\t              ^\n"
              "x.krs:2:18: error: empty statement: parsing would never end [-Wempty-statement]\n"
              "\tx = \"\xc3\xa9\\x01\" 1e+5; ;\n"
              "\t                  ^\n");
    EXPECT_EQ(outcome.out, "");
}

TEST(Check, ColoursOnlyATerminalWhoseUserWantsIt)
{
    if (!Workplace::canMakeTerminals())
        GTEST_SKIP() << "there are no pseudo-terminals here";
    const auto errors = [](const char* terminal, const char* noColour)
    {
        return Workplace()
            .krslc({"check", "-"}, {.input = "else f(float a);\n",
                                    .environment = {{"TERM", terminal}, {"NO_COLOR", noColour}},
                                    .onTerminal = true})
            .err;
    };
    const std::string plain = "<stdin>:1:1: error: Unrecognized return data type or shader type: else\r\n"
                              "else f(float a);\r\n^\r\n";
    EXPECT_EQ(errors("xterm", "1"), plain);
    EXPECT_EQ(errors("dumb", ""), plain);
    EXPECT_EQ(errors("xterm", ""),
              "\x1b[1m<stdin>:1:1: \x1b[1;31merror: \x1b[0m\x1b[1mUnrecognized return data type or shader type: "
              "else\x1b[0m\r\nelse f(float a);\r\n\x1b[1;31m^\x1b[0m\r\n");
}

TEST(Check, PassesAllThatIsShipped)
{
    std::vector<std::string> arguments{"check", "-Werror"};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KRENDER_SHARE))
        if (entry.path().extension() == ".krs")
            arguments.push_back(entry.path().string());
    ASSERT_GT(arguments.size(), 12u);
    const Outcome outcome = Workplace().krslc(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST(Check, ObeysWarningOptions)
{
    const Workplace place;
    place.write("x.krs", inBody("x = 1e+5; else y = 1;"));
    const auto findings = [&place](const std::string& option, int status)
    {
        const Outcome outcome = place.krslc({"check", option, "x.krs"});
        EXPECT_EQ(outcome.status, status) << option;
        return findingsIn(outcome.err);
    };
    EXPECT_EQ(findings("-Wno-exponent-plus", 0), "1:30 else-without-if");
    EXPECT_EQ(findings("-Werror", 1), "1:26 exponent-plus, 1:30 else-without-if");
    EXPECT_EQ(findings("-Wno-empty-statement", 2), ""); // an error, which cannot be silenced

    const Outcome outcome = place.krslc({"check", "-Wno-exponent-pluss", "x.krs"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "krslc: error: no warning is called \"exponent-pluss\"; did you mean exponent-plus?\n"
                           "Try \"krslc --help\".\n");
}

// The guide shows each warning with a source that has it and one that has not; both are tried. Those that are no errors
// can be silenced.
TEST(Check, DoesWhatTheGuideSays)
{
    std::ifstream file(KRENDER_DOCS "/krsl.md");
    std::map<std::string, std::vector<std::string>> examples; // by the heading above
    std::string heading;
    std::string* example = nullptr;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("### "))
            heading = line.substr(4);
        else if (line == "```krsl")
            example = &examples[heading].emplace_back();
        else if (line == "```")
            example = nullptr;
        else if (example)
            *example += line + '\n';

    for (const std::string& source : std::exchange(examples[""], {}))
        EXPECT_EQ(Workplace().krslc({"check", "-"}, {.input = source}).err, "");
    examples.erase("");
    std::istringstream lines(Workplace().krslc({"check", "--list-warnings"}).out);
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count)
    {
        const std::string name = line.substr(0, line.find(' '));
        ASSERT_EQ(examples[name].size(), 2u) << name;
        EXPECT_NE(Workplace().krslc({"check", "-"}, {.input = examples[name][0]}).err.find("[-W" + name + "]"),
                  std::string::npos)
            << name;
        EXPECT_EQ(Workplace().krslc({"check", "-"}, {.input = examples[name][1]}).err, "") << name;
        EXPECT_EQ(Workplace().krslc({"check", "-Wno-" + name, "-"}, {.input = examples[name][1]}).status,
                  line.ends_with("(always an error)") ? 2 : 0)
            << name;
    }
    EXPECT_EQ(count, examples.size());
}

TEST(Check, PrintsTheSameAsJson)
{
    const Workplace place;
    place.write("x.krs", inBody("x = 1e+5; else y = 1; $"));
    const Outcome outcome = place.krslc({"check", "--json", "x.krs", "-"}, {.input = "flot \xff(float a);"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    const auto list = nlohmann::json::parse(outcome.out);
    ASSERT_EQ(list.size(), 4u);
    const nlohmann::json first{{"file", "x.krs"},
                               {"line", 1},
                               {"column", 26},
                               {"severity", "warning"},
                               {"name", "exponent-plus"},
                               {"text", "an exponent takes no plus sign: this is \"1e\", \"+\" and what follows"}};
    EXPECT_EQ(list[0], first);
    EXPECT_EQ(list[2]["severity"], "error");
    EXPECT_TRUE(list[2]["name"].is_null());
    EXPECT_EQ(list[3]["file"], "<stdin>");
}

TEST(Check, GoesOnBehindAFileThatItCannotRead)
{
    const Workplace place;
    place.write("good.krs", "float f(float a);\n");
    place.write("bad.krs", "flot f(float a);\n");
    const Outcome outcome = place.krslc({"check", "missing.krs", ".", "bad.krs", "good.krs"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "krslc: error: cannot read 'missing.krs': No such file or directory\n"
                           "krslc: error: cannot read '.': Is a directory\n"
                           "bad.krs:1:1: error: Unrecognized return data type or shader type: flot\n"
                           "flot f(float a);\n^\n");
}
