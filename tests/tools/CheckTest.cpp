#include "CaseName.h"
#include "Program.h"
#include "Schema.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace
{

struct Case
{
    const char* about;
    const char* source;
    const char* output; ///< all of it
    std::vector<std::string> options = {};
    int status = 1;
};

/// What "check" prints of a file x.krs.
class CheckPrints : public testing::TestWithParam<Case>
{
};

TEST_P(CheckPrints, WhatThereIsToSay)
{
    const Workplace place;
    place.write("x.krs", GetParam().source);
    place.write("twice.krs", "float twice(float a) { return 2.0 * a; }\n");
    std::vector<std::string> arguments{"check", "x.krs"};
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
    const Outcome outcome = place.krslc(arguments);
    EXPECT_EQ(outcome.err, GetParam().output);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, GetParam().status);
}

constexpr const char* kUnused = "material m(out float4 outRGBA) { int i = 3; outRGBA = float4(1.0); }\n";
constexpr const char* kLoop = "material m(out float4 outRGBA)\n{\n    outRGBA = float4(0.0);\n"
                              "    for (int i = 0; i < 3; i++) { outRGBA.x += 0.1; }\n}\n";

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Messages, CheckPrints,
    testing::Values(Case{"range and fix",
                         "material m(uniform float size, out float4 outRGBA)\n{\n\toutRGBA =\tfloat4(sise);\n}\n",
                         "x.krs:3:19: error: 'sise' is not declared [unknown-name]\n"
                         "\toutRGBA =\tfloat4(sise);\n"
                         "\t         \t       ^~~~\n"
                         "x.krs:3:19: fix: write 'size' instead of 'sise'\n"},
                    Case{"fix that inserts", "material m(out float4 outRGBA) { outRGBA = float4(1.0) }\n",
                         "x.krs:1:55: error: expected ';' [missing-semicolon]\n"
                         "material m(out float4 outRGBA) { outRGBA = float4(1.0) }\n"
                         "                                                      ^\n"
                         "x.krs:1:55: fix: insert ';'\n"},
                    Case{"note", "const float k = 1.0;\nconst float k = 2.0;\n",
                         "x.krs:2:13: error: 'k' is declared twice here [redeclared]\n"
                         "const float k = 2.0;\n"
                         "            ^\n"
                         "x.krs:1:13: note: it is declared here\n"
                         "const float k = 1.0;\n"
                         "            ^\n"},
                    Case{"range of several lines",
                         "material m(out float4 outRGBA) { outRGBA = float4(1.0) +\n true; }\n",
                         "x.krs:1:44: error: '+' cannot be applied to float4 and bool [bad-operands]\n"
                         "material m(out float4 outRGBA) { outRGBA = float4(1.0) +\n"
                         "                                           ^~~~~~~~~~~~~\n"},
                    Case{"control bytes", "/* \xc3\xa9\x1b[31m */ \x01\n",
                         "x.krs:1:15: error: '\\x01' is nothing that KRSL knows [unknown-character]\n"
                         "/* \xc3\xa9\\x1b[31m */ \\x01\n"
                         "                ^~~~\n"},
                    Case{"missing include", "#include \"gone.krs\"\n",
                         "x.krs:1:1: error: 'gone.krs' cannot be included: there is no such file [include-failed]\n"
                         "#include \"gone.krs\"\n"
                         "^~~~~~~~~~~~~~~~~~~\n"}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Warnings, CheckPrints,
    testing::Values(Case{"warning",
                         kUnused,
                         "x.krs:1:38: warning: 'i' is not read [-Wunused-variable]\n"
                         "material m(out float4 outRGBA) { int i = 3; outRGBA = float4(1.0); }\n"
                         "                                     ^\n",
                         {},
                         0},
                    Case{"warning that is off", kUnused, "", {"-Wno-unused-variable"}, 0},
                    Case{"warning that is on again",
                         kUnused,
                         "",
                         {"-Wunused-variable", "-Wno-hidden-name", "-Wno-unused-variable"},
                         0},
                    Case{"warning as an error",
                         kUnused,
                         "x.krs:1:38: error: 'i' is not read [-Wunused-variable]\n"
                         "material m(out float4 outRGBA) { int i = 3; outRGBA = float4(1.0); }\n"
                         "                                     ^\n",
                         {"-Werror"}},
                    Case{"loop with braces", kLoop, "", {"-Werror"}, 0},
                    Case{
                        "loop with braces in plain hosts",
                        kLoop,
                        "x.krs:4:5: warning: a host that uses ShadingParser reads this otherwise: it finds 'for (int i "
                        "= 0;' [-Wplain]\n"
                        "    for (int i = 0; i < 3; i++) { outRGBA.x += 0.1; }\n"
                        "    ^\n",
                        {"-Wplain"},
                        0},
                    Case{"mistyped warning",
                         kUnused,
                         "krslc: error: no warning is called \"hiden-name\"; did you mean hidden-name?\n"
                         "Try \"krslc --help\".\n",
                         {"-Whiden-name"},
                         2},
                    Case{"error in place of a warning",
                         kUnused,
                         "krslc: error: \"recursion\" is an error and cannot be switched\nTry \"krslc --help\".\n",
                         {"-Wno-recursion"},
                         2}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Plain, CheckPrints,
    testing::Values(
        Case{"loop with braces",
             kLoop,
             "x.krs:5:1: error: the source ends within this header: a \";\" or a body is missing\n}\n^\n",
             {"--plain"}},
        Case{"second header",
             "float f(float a);\nfloat h(flot a);\n",
             "x.krs:2:1: error: Not a valid data type: flot\nfloat h(flot a);\n^\n",
             {"--plain"}},
        Case{"empty statement",
             "float f(float a) { output = a;; }\n",
             "x.krs:1:31: error: Empty statement\nfloat f(float a) { output = a;; }\n                              ^\n",
             {"--plain"}},
        Case{
            "header without an end",
            "float f(float a);\nfloat g(float a)\n",
            "x.krs:2:1: error: the source ends within this header: a \";\" or a body is missing\nfloat g(float a)\n^\n",
            {"--plain"}},
        Case{"comment without an end",
             "float f(float a);\n /* x",
             "x.krs:2:2: error: the source ends within what begins here\n /* x\n ^\n",
             {"--plain"}},
        Case{"no function", "// c\n", "", {"--plain"}, 0}),
    CaseName());

TEST(Check, FindsIncludedFilesInFolders)
{
    const Workplace place;
    std::filesystem::create_directories(place.path() / "a");
    std::filesystem::create_directories(place.path() / "b");
    place.write("b/part.krs", "float part(float size) { return sise; }\n");
    const std::string source = "#include \"part.krs\"\n";
    EXPECT_EQ(place.krslc({"check", "-", "-I", "a", "-I", "b"}, {.input = source}).err,
              "b/part.krs:1:33: error: 'sise' is not declared [unknown-name]\n"
              "float part(float size) { return sise; }\n"
              "                                ^~~~\n"
              "b/part.krs:1:33: fix: write 'size' instead of 'sise'\n");
}

TEST(Check, ShowsAHundredErrorsAndCountsTheRest)
{
    std::string source = "material m(out float4 outRGBA)\n{\n";
    for (int i = 0; i < 103; ++i)
        source += "outRGBA.x = nothing;\n";
    const Outcome outcome = Workplace().krslc({"check", "-"}, {.input = source + "outRGBA = float4(1.0); }\n"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("<stdin>:102:13: error: "), std::string::npos);
    EXPECT_EQ(outcome.err.find("<stdin>:103:13: error: "), std::string::npos);
    EXPECT_TRUE(outcome.err.ends_with("\n<stdin>: 3 more errors are not shown\n")) << outcome.err;
}

TEST(Check, ColoursOnlyATerminalWhoseUserWantsIt)
{
    if (!Workplace::canMakeTerminals())
        GTEST_SKIP() << "there are no pseudo-terminals here";
    const auto errors = [](const char* terminal, const char* noColour)
    {
        return Workplace()
            .krslc({"check", "-"}, {.input = "const float k = kk;\n",
                                    .environment = {{"TERM", terminal}, {"NO_COLOR", noColour}},
                                    .onTerminal = true})
            .err;
    };
    const std::string plain = "<stdin>:1:17: error: 'kk' is no constant [not-a-constant]\r\n"
                              "const float k = kk;\r\n                ^~\r\n";
    EXPECT_EQ(errors("xterm", "1"), plain);
    EXPECT_EQ(errors("dumb", ""), plain);
    EXPECT_EQ(errors("xterm", ""),
              "\x1b[1m<stdin>:1:17: \x1b[1;31merror: \x1b[0m\x1b[1m'kk' is no constant [not-a-constant]\x1b[0m\r\n"
              "const float k = kk;\r\n                \x1b[1;31m^~\x1b[0m\r\n");
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

TEST(Check, ListsEachWarningOnceAndTakesItsName)
{
    std::istringstream lines(Workplace().krslc({"check", "--list-warnings"}).out);
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);)
    {
        names.push_back(line.substr(0, line.find(' ')));
        EXPECT_EQ(Workplace().krslc({"check", "-Wno-" + names.back(), "-"}).status, 0) << line;
    }
    EXPECT_EQ(std::count(names.begin(), names.end(), "plain"), 1);
    EXPECT_GT(names.size(), 8u);
}

TEST(Check, PrintsTheSameAsJson)
{
    const Workplace place;
    place.write("x.krs", "const float k = 1.0;\nconst float k = 2.0;\nfloat f(float size) { return sise; }\n");
    const Outcome outcome = place.krslc({"check", "--json", "x.krs", "-", "gone.krs"}, {.input = "\xff"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(schemaFault(outcome.out, "krslc-diagnostics"), "");
    const auto list = nlohmann::json::parse(outcome.out);
    ASSERT_EQ(list.size(), 4u);
    EXPECT_EQ(list[0],
              nlohmann::json::parse(R"({"file": "x.krs", "line": 2, "column": 13, "endLine": 2, "endColumn": 14,
        "severity": "error", "name": "redeclared", "message": "'k' is declared twice here", "fixes": [],
        "notes": [{"file": "x.krs", "line": 1, "column": 13, "endLine": 1, "endColumn": 14,
                   "message": "it is declared here"}]})"));
    EXPECT_EQ(list[1]["fixes"], nlohmann::json::parse(R"([{"file": "x.krs", "line": 3, "column": 30, "endLine": 3,
        "endColumn": 34, "replacement": "size"}])"));
    EXPECT_EQ(list[2]["file"], "<stdin>");
    EXPECT_EQ(list[3]["message"], "cannot read 'gone.krs': No such file or directory");

    const Outcome plain = place.krslc({"check", "--plain", "--json", "-"}, {.input = "flot f(float a);"});
    EXPECT_EQ(schemaFault(plain.out, "krslc-diagnostics"), "");
    EXPECT_TRUE(nlohmann::json::parse(plain.out)[0]["name"].is_null());
}

TEST(Check, GoesOnBehindAFileThatItCannotRead)
{
    const Workplace place;
    place.write("good.krs", "float f(float a);\n");
    place.write("bad.krs", "flot f(float a);\n");
    const Outcome outcome = place.krslc({"check", "missing.krs", ".", "bad.krs", "good.krs"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.err.starts_with("krslc: error: cannot read 'missing.krs': No such file or directory\n"
                                        "krslc: error: cannot read '.': Is a directory\n"
                                        "bad.krs:1:1: error: "))
        << outcome.err;
}
