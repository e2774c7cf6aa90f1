#include <krender/core/Exception.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/FunctionType.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParser.h>
#include <krender/shading/ShadingParserLimits.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

using namespace krShadingDag;

namespace
{

std::unique_ptr<ShadingNodeSpec> parse(const std::string& source)
{
    ShadingParser parser;
    ShadingNodeSpec* spec = nullptr;
    EXPECT_TRUE(parser.parseString(krString::CString(source.c_str()), &spec)) << parser.errorString().asChar();
    return std::unique_ptr<ShadingNodeSpec>(spec);
}

std::string attribute(const ShadingAttribute& a)
{
    std::ostringstream text;
    text << dataTypeName(a.dataType()) << ' ' << a.name().asChar() << ' ' << a.range().minFreq << ':'
         << a.range().maxFreq;
    return text.str();
}

/// "name(inputs) -> outputs", the attributes with their ranges.
std::string header(const ShadingNodeSpec& spec)
{
    std::string text(spec.name().view());
    text += "(";
    for (const ShadingAttribute& a : spec.inputs())
        text.append(text.back() == '(' ? "" : ", ").append(attribute(a));
    text += ") ->";
    for (const ShadingAttribute& a : spec.outputs())
        text.append(" ").append(attribute(a));
    return text;
}

/// A tree as nested lists: opaque statements and ifs with their text, every kind with its number.
std::string tree(const StatementCompound& list)
{
    std::string text;
    for (unsigned i = 0; i < list.size(); ++i)
    {
        const Statement& s = *list.statement(i);
        text.append(std::to_string(static_cast<unsigned>(s.type())));
        if (s.isLiteral())
            text.append("'").append(s.text().view()).append("'");
        if (s.isCompound())
            text.append("[").append(tree(s.children())).append("]");
        text += " ";
    }
    return text;
}

struct Header
{
    const char* name;
    const char* source;
    const char* expected;

    friend std::ostream& operator<<(std::ostream& out, const Header& row) { return out << row.name; }
};
class ParserReadsHeader : public testing::TestWithParam<Header>
{
};

struct Rejected
{
    const char* fault;
    const char* source;
    const char* message;

    friend std::ostream& operator<<(std::ostream& out, const Rejected& row) { return out << row.fault; }
};
class ParserRejects : public testing::TestWithParam<Rejected>
{
};

struct Body
{
    const char* name;
    const char* source;
    const char* tree;

    friend std::ostream& operator<<(std::ostream& out, const Body& row) { return out << row.name; }
};
class ParserReadsBody : public testing::TestWithParam<Body>
{
};

} // namespace

TEST_P(ParserReadsHeader, IntoTypedAttributes) { EXPECT_EQ(header(*parse(GetParam().source)), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Headers, ParserReadsHeader,
    testing::Values(
        Header{"Plain", "float f(float a);", "f(float a 1:4) -> float output 1:4"},
        Header{"Ranges", "uniform:vertex float3 g(out vertex float3 p, float q);",
               "g(float q 1:4) -> float3 output 2:3 float3 p 3:3"},
        Header{"RangeOfOne", "uniform:uniform float f(constant:constant float a);",
               "f(float a 1:1) -> float output 2:2"},
        Header{"ReversedRangeIsEmpty", "fragment:uniform float h(float a);", "h(float a 1:4) -> float output 0:0"},
        Header{"VoidWithAnOutput", "void f(out float r);", "f() -> float r 1:4"},
        Header{"Material", "material m(uniform sampler2D t out float4 c);", "m(sampler2D t 2:2) -> float4 c 1:4"},
        Header{"Light", "light l(out float4 c);", "l() -> float4 c 1:4"},
        Header{"Displacement", "displacement d(out float4 c);", "d() -> float4 c 1:4"},
        Header{"RegularAndACommaTooMany", "regular r(out float4 c,);", "r() -> float4 c 1:4"},
        Header{"MissingComma", "float f(float a float b, constant int c);",
               "f(float a 1:4, float b 1:4, int c 1:1) -> float output 1:4"},
        Header{"ConversionIsNamedByItsResult", "float3 operator float(float v);",
               "float3(float v 1:4) -> float3 output 1:4"},
        Header{"CommentsAndARest", "float /* c */  f(float a); ignored", "f(float a 1:4) -> float output 1:4"}));

TEST(ParserReadsHeader, NamesOfOperators)
{
    for (const char* symbol :
         {"+", "-", "*", "/", "%", "==", "!=", ">", "<", ">=", "<=", "||", "&&", "++", "--", "!", "@", "[]"})
        EXPECT_EQ(header(*parse(std::string("float operator ").append(symbol).append("(float v);"))),
                  std::string("operator").append(symbol).append("(float v 1:4) -> float output 1:4"));
    for (const char* keyword : {"constant", "uniform", "vertex", "fragment"})
        EXPECT_STREQ(parse(std::string("float operator ").append(keyword).append("(float v);"))->name().asChar(),
                     keyword);
}

TEST_P(ParserRejects, WithItsMessage)
{
    ShadingParser parser;
    ShadingNodeSpec untouched(kGenerated);
    ShadingNodeSpec* spec = &untouched;
    EXPECT_FALSE(parser.parseString(GetParam().source, &spec));
    EXPECT_EQ(spec, &untouched);
    EXPECT_STREQ(parser.errorString().asChar(), GetParam().message);
    EXPECT_STREQ(parser.errorString().asChar(), "") << "asked once, gone";
}

INSTANTIATE_TEST_SUITE_P(
    Sources, ParserRejects,
    testing::Values(
        Rejected{"NoMaximum", "uniform: float h(float a);", "error Expected maximum frequency specifier.\n"},
        Rejected{"UnknownReturn", "color f(float a);", "error Unrecognized return data type or shader type: color\n"},
        Rejected{"TextureShader", "texture2D f(out float a);", "error Shader type is not allowed in KRSL: texture2D\n"},
        Rejected{"VolumeTextureShader", "texture3D f(out float a);",
                 "error Shader type is not allowed in KRSL: texture3D\n"},
        Rejected{"NoName", "float (float a);", "error Invalid function name\n"},
        Rejected{"AssignmentOperator", "float operator=(float a);", "error Expected valid operator symbol\n"},
        Rejected{"HalfIndexOperator", "float operator[(float a);", "error Expected ']'\n"},
        Rejected{"NoParenthesis", "float f;", "error Expected '('\n"},
        Rejected{"InvalidTypesName", "invalidType! f(out float a);",
                 "error Unrecognized return data type or shader type: invalidType\n"},
        Rejected{"VoidArgument", "float f(void a);", "error Not a valid data type: void\n"},
        Rejected{"UnclosedArguments", "float f(float a;", "error Not a valid data type: ;\n"},
        Rejected{"NamelessArgument", "float f(float, float b);", "error Expected argument name: ,\n"},
        Rejected{"NoOutput", "void f(float a);", "error Function needs at least one output.\n"},
        Rejected{"DuplicateInput", "float f(float a, int a);", "error input variable already exists: a\n"},
        Rejected{"TextBeforeSemicolon", "float f(float a) const;", "error Expected semicolon\n"},
        Rejected{"TextBeforeBraces", "float f(float a) const {}", "error Expected braces\n"},
        Rejected{"ConditionWithSemicolon", "float f(float a) { if (a; b) }",
                 "error Expected close-parentheses after if statement\n"},
        Rejected{"ConditionCutByTheEnd", "float f(float a) { if (a }",
                 "error Expected close-parentheses after if statement\n"},
        Rejected{"ConditionWithoutEnd", "float f(float a) { if (a,",
                 "error Expected close-parentheses after if statement\n"},
        Rejected{"ConditionAtTheEnd", "float f(float a) { if (a)}",
                 "error internal compiler error... unexpected end of KRSL stream.\n"},
        Rejected{"BodyWithoutEnd", "float f(float a) { x = a;",
                 "error internal compiler error... unexpected end of KRSL stream.\n"},
        Rejected{"SourceEndsInAToken", "float f(float a) { x = a", "error \n"},
        Rejected{"NoFunction", "float f(float a)",
                 "error: found no function declaration or definition.\n"
                 "internal error: !fpNodeSpec after parsing code string.\n"}));

TEST_P(ParserReadsBody, IntoStatements)
{
    EXPECT_EQ(tree(parse(std::string("float f(float a) ").append(GetParam().source))->body()), GetParam().tree);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, ParserReadsBody,
    testing::Values(
        Body{"Empty", "{ }", "4[] "}, Body{"Opaque", "{ x  =\n a; }", "4[2'x  =\n a;' ] "},
        Body{"Illuminance", "{ illuminance { c += 1; } }", "4[5[2'c += 1;' ] ] "},
        Body{"IlluminanceWithArgumentsIsOpaque", "{ illuminance (P) { c; } }", "4[2'illuminance (P) { c;' ] "},
        Body{"IfElse", "{ if (a > b) x = 1; else x = 2; }", "4[7'if (a > b)'[2'x = 1;' ] 8[2'x = 2;' ] ] "},
        Body{"ElseIf", "{ if (a) { } else if (b) { y; } else { } }", "4[7'if (a)'[] 8[7'if (b)'[2'y;' ] ] 8[] ] "},
        Body{"ElseAlone", "{ else x; }", "4[8[2'x;' ] ] "},
        Body{"FirstParenthesisEndsTheCondition", "{ if (f(x) > 0) y; }", "4[7'if (f(x)'[2'> 0) y;' ] ] "},
        Body{"IfWithoutParenthesesIsOpaque", "{ if a > b; }", "4[2'if a > b;' ] "},
        Body{"LoopsAreCutAtTheirFirstSemicolon", "{ for (i = 0; i < 3; ++i) x; }",
             "4[2'for (i = 0;' 2'i < 3;' 2'++i) x;' ] "},
        Body{"Blocks", "{ { x; } { { } } y; }", "4[4[2'x;' ] 4[4[] ] 2'y;' ] "},
        Body{"CommentsStayInTheText", "{ x /* c */   = 1; }", "4[2'x /* c */   = 1;' ] "}));

TEST(ParserBody, TokensOfAStatementComeFromItsText)
{
    const auto spec = parse("float f(float a)\n{ x /* c */   = 2.5; if (a > b)\n y; }");
    const StatementCompound& body = spec->body().statement(0)->children();

    const std::vector<Token>& opaque = body.statement(0)->tokens();
    EXPECT_STREQ(toString(opaque).asChar(), "xx=2.5") << "the first token twice, the semicolon not at all";
    EXPECT_EQ(opaque[0].position, opaque[1].position);
    EXPECT_EQ(opaque[1].line, 2u);
    EXPECT_EQ(opaque[1].column, 3u);
    EXPECT_EQ(opaque[3].position, 33u);
    EXPECT_TRUE(opaque[3].isFractional);

    EXPECT_STREQ(toString(body.statement(1)->tokens()).asChar(), "a>b");
    Statement copy;
    copy.cloneFrom(*body.statement(0));
    EXPECT_STREQ(toString(copy.tokens()).asChar(), "xx=2.5");
    copy.setText("generated", true);
    EXPECT_TRUE(copy.tokens().empty());
    EXPECT_TRUE(body.statement(1)->children().statement(0)->tokens()[0].line == 3);
}

TEST(ParserBody, LoneSemicolonIsKeptAndNotConsumed)
{
    // Read in pieces, for a block's loop would never get past it.
    ShadingParser parser;
    StatementCompound block;
    ShadingNodeSpec* spec = nullptr;
    ASSERT_TRUE(parser.parseString("float f(float a);;x;", &spec));
    delete spec;
    for (int i = 0; i < 3; ++i)
        parser.parseOpaqueStatement(block);
    EXPECT_EQ(tree(block), "2';' 2';' 2';' ");
    EXPECT_TRUE(block.statement(0)->tokens().empty());
    EXPECT_EQ(parser.consume_front_token().type, TokenType::Semicolon);
}

TEST(ParserQueue, LooksAheadAndEndsWithFreshTokens)
{
    ShadingParser parser;
    ShadingNodeSpec* spec = nullptr;
    ASSERT_TRUE(parser.parseString("\n\nfloat f(float a);2.5 a // b\n /* c */  \n\nd.", &spec));
    delete spec;
    EXPECT_TRUE(parser.consume_front_token().isFractional);
    EXPECT_STREQ(parser.token_ahead(1).text.asChar(), "d");
    EXPECT_STREQ(parser.accumulate_token().text.asChar(), ".");
    EXPECT_EQ(parser.token_ahead(7).type, TokenType::EndOfStream);
    const Token a = parser.consume_front_token();
    EXPECT_STREQ(a.text.asChar(), "a");
    EXPECT_FALSE(a.isFractional);
    const Token d = parser.consume_front_token();
    EXPECT_EQ(d.line, 6u);
    EXPECT_STREQ(parser.originalString(d, parser.consume_front_token()).asChar(), "d.");
    for (int i = 0; i < 3; ++i)
    {
        const Token end = parser.consume_front_token();
        EXPECT_EQ(end.type, TokenType::EndOfStream);
        EXPECT_EQ(end.line, 1u);
        EXPECT_EQ(end.text.length(), 0u);
    }
}

TEST(ParserQueue, GrowsWithoutMovingItsTokens)
{
    ShadingParser parser;
    ShadingNodeSpec* spec = nullptr;
    ASSERT_TRUE(parser.parseString(("float f(float a);" + std::string(1000, ',')).c_str(), &spec));
    delete spec;
    Token& first = parser.accumulate_token();
    EXPECT_EQ(parser.token_ahead(999).column, 1017u);
    first.text = "changed";
    EXPECT_STREQ(parser.token_ahead(0).text.asChar(), "changed");
    for (unsigned column = 18; column < 1018; ++column)
        ASSERT_EQ(parser.consume_front_token().column, column);
    EXPECT_EQ(parser.token_ahead(0).type, TokenType::EndOfStream);
}

TEST(ParserVariables, AreTheHeadersAttributesAndMatchByNameAndType)
{
    ShadingParser parser;
    ShadingNodeSpec* spec = nullptr;
    ASSERT_TRUE(parser.parseString("float f(uniform float a, float b, out float3 b) { }", &spec));
    delete spec;
    ShadingAttribute found;
    EXPECT_TRUE(parser.retrieveVariable("a", found));
    EXPECT_EQ(found.range(), kUniformRange);
    EXPECT_TRUE(parser.retrieveVariable("output", found));
    EXPECT_FALSE(parser.retrieveVariable("c", found));
    EXPECT_FALSE(parser.assignVariable("b", ShadingAttribute("b", kFloat2, kVertexRange)));
    EXPECT_TRUE(parser.assignVariable("b", ShadingAttribute("b", kFloat3, kVertexRange)));
    EXPECT_TRUE(parser.retrieveVariable("b", found));
    EXPECT_EQ(found.range(), kFullRange) << "that was the second b";
    EXPECT_TRUE(parser.assignVariable("b", ShadingAttribute("b", kFloat, kVertexRange)));
    EXPECT_TRUE(parser.retrieveVariable("b", found));
    EXPECT_EQ(found.range(), kVertexRange);
    ASSERT_TRUE(parser.parseString("float g(float c, int c2, out int c) { }", &spec)) << "the next parse forgets them";
    delete spec;
    EXPECT_FALSE(parser.retrieveVariable("a", found));
    EXPECT_FALSE(parser.retrieveVariable("b", found));
    EXPECT_TRUE(parser.assignVariable("c", ShadingAttribute("c", kInt, kUniformRange)))
        << "behind the float of its name";
    EXPECT_TRUE(parser.retrieveVariable("c", found));
    EXPECT_EQ(found.dataType(), kFloat);
    EXPECT_EQ(found.range(), kFullRange) << "the first of the name";
    parser.reset();
    EXPECT_FALSE(parser.retrieveVariable("c", found));
}

TEST(Parser, CarriesNothingFromOneParseToTheNext)
{
    ShadingParser parser;
    ShadingNodeSpec* spec = nullptr;
    ASSERT_TRUE(parser.parseString("float f(float a) { }", &spec));
    delete spec;
    EXPECT_FALSE(parser.parseString("void g(float b);", &spec));
    EXPECT_STREQ(parser.errorString().asChar(), "error Function needs at least one output.\n") << "f's output is gone";
    EXPECT_FALSE(parser.parseString("float h(void b);", &spec));
    EXPECT_FALSE(parser.parseString("color i(float b);", &spec));
    EXPECT_STREQ(parser.errorString().asChar(), "error Unrecognized return data type or shader type: color\n");
    EXPECT_FALSE(parser.parseString("float j(float b) { { illuminance { } if (b) if (b;", &spec));
    ASSERT_TRUE(parser.parseString("float j(float b) { x; }", &spec)) << "no block is open any more";
    EXPECT_EQ(tree(spec->body()), "4[2'x;' ] ");
    delete spec;
    EXPECT_FALSE(parser.parseString("", &spec)) << "the end of the source";
    ASSERT_TRUE(parser.parseString("float k(float c);", &spec));
    delete spec;
    EXPECT_STREQ(parser.errorString().asChar(), "");
}

TEST(Parser, DeletesTheSpecsThatNobodyTook)
{
    const std::int32_t before = ShadingNodeSpec::fsNumInstances_ShadingNodeSpec;
    const auto live = [before] { return ShadingNodeSpec::fsNumInstances_ShadingNodeSpec - before; };
    {
        ShadingParser parser;
        ShadingNodeSpec* spec = nullptr;
        ASSERT_TRUE(parser.parseString("float f(float a); float g(float a); float h(void a);", &spec));
        parser.parseFunc();
        EXPECT_EQ(live(), 2) << "f is the caller's, g the parser's";
        parser.reset();
        EXPECT_EQ(live(), 2) << "a reset deletes nothing";
        EXPECT_FALSE(parser.parseString("", &spec));
        EXPECT_EQ(live(), 2) << "h failed, g is gone";
        EXPECT_FALSE(parser.parseFile("/nowhere/at/all.krs", false));
        EXPECT_EQ(live(), 1);
        delete spec;
        EXPECT_THROW(parser.parseFuncHeader(), Exception);
        EXPECT_EQ(live(), 1);
    }
    EXPECT_EQ(live(), 0);
}

TEST(Parser, ReadsAHeaderAloneIntoASpecOfItsOwn)
{
    EXPECT_THROW(ShadingParser().parseFuncHeader(), Exception);
    ShadingParser parser;
    ShadingNodeSpec* spec = nullptr;
    ASSERT_TRUE(parser.parseString("float f(float a);\nfloat g(float b) { } x", &spec));
    EXPECT_EQ(parser.parseFuncHeader(), 5u);
    EXPECT_EQ(header(*spec), "f(float a 1:4) -> float output 1:4");
    delete spec;
    EXPECT_EQ(parser.token_ahead(6).type, TokenType::OpenBrace);
    EXPECT_EQ(parser.token_ahead(7).type, TokenType::CloseBrace);
    try
    {
        parser.parseFuncDef();
        ADD_FAILURE() << "a definition's header is the whole queue";
    }
    catch (const Exception& e)
    {
        EXPECT_STREQ(e.message.asChar(), "INTERNAL ERROR: Buffer overrun");
    }
}

TEST(ParserLimits, RefuseWhatHostsDoNotWant)
{
    const struct
    {
        ShadingParserLimits limits;
        const char* source;
        const char* message; // empty where the source is read
    } cases[] = {
        {{.refuseEmptyStatements = true},
         "float f(float a)\n{ x;\n  ; }",
         "error Empty statement at line 3, column 3\n"},
        {{.refuseEmptyStatements = true},
         "float f(float a) { if (a) ; }",
         "error Empty statement at line 1, column 27\n"},
        {{.refuseEmptyStatements = true},
         "float f(float a) { for (;;) }",
         "error Empty statement at line 1, column 26\n"},
        {{.refuseEmptyStatements = true}, "float f(float a) { { x; } if (a) { } else y; }", ""},
        {{.maxNesting = 0}, "float f(float a) { }", "error Nesting deeper than 0 at line 1, column 18\n"},
        {{.maxNesting = 0}, "float f(float a);", ""},
        {{.maxNesting = 2}, "float f(float a) { { x; } { y; } if (a) z; else { w; } illuminance { } }", ""},
        {{.maxNesting = 2}, "float f(float a) { { { } } }", "error Nesting deeper than 2 at line 1, column 22\n"},
        {{.maxNesting = 2},
         "float f(float a) { if (a)\n if (b) x; }",
         "error Nesting deeper than 2 at line 2, column 2\n"},
        {{.maxNesting = 2}, "float f(float a) { else else x; }", "error Nesting deeper than 2 at line 1, column 25\n"},
        {{.maxNesting = 2},
         "float f(float a) { { illuminance { } } }",
         "error Nesting deeper than 2 at line 1, column 22\n"},
        {{.maxHeaderTokens = 7}, "float f(float a);", ""},
        {{.maxHeaderTokens = 7}, "float f(float a) { x = a + b + c; }", ""},
        {{.maxHeaderTokens = 6},
         "\n float f(float /* c */   a);",
         "error Header of more than 6 tokens at line 2, column 2\n"},
    };
    for (const auto& c : cases)
    {
        ShadingParser parser;
        parser.setLimits(c.limits);
        ShadingNodeSpec* spec = nullptr;
        EXPECT_EQ(parser.parseString(c.source, &spec), c.message[0] == '\0') << c.source;
        EXPECT_STREQ(parser.errorString().asChar(), c.message);
        delete spec;
    }
}

TEST(ParserBody, NestsWithoutTheStack)
{
    for (const char* level : {"{ ", "if (a) ", "else ", "illuminance { ", "if (a) { "})
    {
        std::string source = "float f(float a) { ";
        for (int depth = 0; depth < 200000; ++depth)
            source += level;
        source += "x; ";
        if (source.find('{', 20) != std::string::npos)
            for (int depth = 0; depth < 200000; ++depth)
                source += '}';
        const auto spec = parse(source + "}");
        EXPECT_EQ(spec->body().size(), 1u);
    }
}
