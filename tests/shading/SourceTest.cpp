#include <krender/platform/String.h>
#include <krender/shading/FunctionType.h>
#include <krender/shading/MemMappedFile.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParser.h>
#include <krender/shading/ShadingParserLimits.h>
#include <krender/shading/StatementCompound.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

using namespace krShadingDag;

namespace
{

/// Sources in files of their own; the library is empty before and after.
class SourceFile : public testing::Test
{
protected:
    SourceFile() : fPath(std::filesystem::path(testing::TempDir()) / ("krender_source_" + std::to_string(getpid()))) {}
    ~SourceFile() override
    {
        std::filesystem::remove(fPath);
        ShadingNodeSpec::clearLibrary();
    }

    bool parse(std::string_view source)
    {
        std::ofstream(fPath, std::ios::binary) << source;
        return fParser.parseFile(fPath.c_str(), true);
    }

    std::filesystem::path fPath;
    ShadingParser fParser;
};

constexpr const char* kNoFunction = "error: found no function declaration or definition.\n";

} // namespace

TEST_F(SourceFile, EndsInOneMoreByteThatIsNoBlank)
{
    std::ofstream(fPath, std::ios::binary) << std::string_view("a\0\n", 3);
    MemMappedFile bytes;
    EXPECT_EQ(bytes.c_str(), nullptr);
    bytes.openString("front ");
    ASSERT_TRUE(bytes.open(fPath.c_str()));
    EXPECT_EQ(std::string_view(bytes.c_str(), bytes.size()), std::string_view("front a\0\n\xff", 10));
}

TEST_F(SourceFile, MissingOrUnreadableIsReportedUnderOneName)
{
    for (const std::string& path : {std::string("/nowhere/at/all.krs"), testing::TempDir()})
    {
        EXPECT_FALSE(fParser.parseFile(path.c_str(), false)) << path;
        EXPECT_STREQ(fParser.errorString().asChar(), "Couldn't not find stdlib.krs file!\n");
        EXPECT_STREQ(fParser.errorString().asChar(), "");
    }
}

TEST_F(SourceFile, WhateverFollowsTheLastFunctionIsNoFailure)
{
    for (const char* source :
         {"", "   \n", "// nothing\n", "float f(float a);", "float f(float a) { x; }\n\n", "float f(float a); tail"})
    {
        ShadingParser parser;
        std::ofstream(fPath, std::ios::binary) << source;
        EXPECT_TRUE(parser.parseFile(fPath.c_str(), true)) << source;
        EXPECT_STREQ(parser.errorString().asChar(), kNoFunction) << source;
    }
    EXPECT_EQ(ShadingNodeSpec::fLibrary.size(), 1u);
}

TEST_F(SourceFile, StopsAtTheFirstErrorAndSaysWhere)
{
    const struct
    {
        const char* source;
        const char* message;
        std::size_t registered;
    } cases[] = {
        {"float f(float a);\nfloat g(float a) { x = a; }\n\n   float h(void a);\nfloat i(float a);",
         "stdlib.krs(line 4, column 4) : error Not a valid data type: void\n", 2},
        {"float f(float a) { if (a;\n b) }",
         "stdlib.krs(line 1, column 25) : error Expected close-parentheses after if statement\n", 0},
        {"float f(float a) { x = a;",
         "stdlib.krs(line 1, column 1) : error internal compiler error... unexpected end of KRSL stream.\n", 0},
        {"float f(float a) { x; }\nvoid g(float a);", // f's output is not g's
         "stdlib.krs(line 2, column 1) : error Function needs at least one output.\n", 1},
        {"float f(float a)\n{ x = \"open; }\n", "stdlib.krs(line 2, column 7) : error \n", 0},
    };
    for (const auto& c : cases)
    {
        ShadingNodeSpec::clearLibrary();
        ShadingParser parser;
        std::ofstream(fPath, std::ios::binary) << c.source;
        EXPECT_FALSE(parser.parseFile(fPath.c_str(), true));
        EXPECT_STREQ(parser.errorString().asChar(), c.message);
        EXPECT_EQ(ShadingNodeSpec::fLibrary.size(), c.registered);
    }
}

TEST_F(SourceFile, LimitsOutliveParsesAndAreErrorsAtTheirPlace)
{
    fParser.setLimits({.refuseEmptyStatements = true, .maxNesting = 1});
    EXPECT_TRUE(parse("float f(float a) { x; }\n"));
    EXPECT_FALSE(parse("float g(float a)\n{ x;; }"));
    EXPECT_STREQ(fParser.errorString().asChar(),
                 "stdlib.krs(line 3, column 5) : error Empty statement at line 3, column 5\n");
    EXPECT_EQ(fParser.limits().maxNesting, 1u);
}

TEST_F(SourceFile, DefinitionReplacesItsDeclaration)
{
    ASSERT_TRUE(parse("float f(float a);\nfloat f(float b) { illuminance { x; } }"));
    ASSERT_EQ(ShadingNodeSpec::fLibrary.size(), 1u);
    const ShadingNodeSpec& spec = *ShadingNodeSpec::fLibrary.begin()->second;
    EXPECT_EQ(spec.nodeType(), kDefinition);
    EXPECT_STREQ(spec.inputs()[0].name().asChar(), "b");
    EXPECT_STREQ(spec.body().toString("", " ").asChar(), "{\n illuminance\n {\n  x;\n }\n}\n");
    EXPECT_EQ(ShadingNodeSpec::fsNumInstances_ShadingNodeSpec, 1);
}

TEST_F(SourceFile, StringsStayOutOfTheLibrary)
{
    ShadingNodeSpec* spec = nullptr;
    ASSERT_TRUE(fParser.parseString("float f(float a) { x = a; }", &spec));
    EXPECT_EQ(spec->nodeType(), kDefinition);
    EXPECT_TRUE(ShadingNodeSpec::fLibrary.empty());
    delete spec;
    EXPECT_TRUE(parse("float g(float a);")) << "and files go into it again";
    EXPECT_EQ(ShadingNodeSpec::fLibrary.size(), 1u);
}

TEST_F(SourceFile, OneParserGoesOnWhereItStood)
{
    ShadingNodeSpec* first = nullptr;
    ShadingNodeSpec* second = nullptr;
    ASSERT_TRUE(fParser.parseString("float f(float a);\nfloat g(float a)", &first));
    ASSERT_TRUE(fParser.parseString(";", &second)) << "the second text stands behind the rest of the first";
    EXPECT_STREQ(second->name().asChar(), "g");
    EXPECT_FALSE(parse("\nfloat h(void a);"));
    EXPECT_STREQ(fParser.errorString().asChar(), "stdlib.krs(line 3, column 1) : error Not a valid data type: void\n");
    delete first;
    delete second;
}
