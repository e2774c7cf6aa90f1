#include <krender/core/Exception.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/Token.h>
#include <krender/shading/Tokenizer.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

using namespace krShadingDag;

namespace
{

/// The tokens of a source as "type:text line,column", one a line; "END" at the end of the stream, "THROWS" where the
/// tokenizer gives up.
std::string tokensOf(std::string_view source)
{
    Tokenizer tokenizer;
    tokenizer.openString(krString::CString(source));
    std::string list;
    for (Token token;;)
    {
        try
        {
            tokenizer.nextToken(&token);
        }
        catch (const Exception& e)
        {
            EXPECT_EQ(e.type, kSourceEnded);
            EXPECT_EQ(e.message.length(), 0u);
            return list + "THROWS";
        }
        if (token.type == TokenType::EndOfStream)
            return list + "END";
        list += std::to_string(static_cast<unsigned>(token.type)) + ":" + std::string(token.text.view()) + " " +
                std::to_string(token.line) + "," + std::to_string(token.column) + "\n";
    }
}

Token firstOf(const char* source)
{
    Tokenizer tokenizer;
    tokenizer.openString(source);
    Token token;
    tokenizer.nextToken(&token);
    return token;
}

struct Split
{
    const char* name;
    std::string_view source;
    const char* tokens;

    friend std::ostream& operator<<(std::ostream& out, const Split& row) { return out << row.name; }
};

class TokenizerSplits : public testing::TestWithParam<Split>
{
};

} // namespace

TEST_P(TokenizerSplits, IntoExactTokens) { EXPECT_EQ(tokensOf(GetParam().source), GetParam().tokens); }

INSTANTIATE_TEST_SUITE_P(
    Sources, TokenizerSplits,
    testing::Values(
        Split{"Empty", "", "END"}, Split{"TrailingBlankThrows", "; ", "59:; 1,1\nTHROWS"},
        Split{"WordAtTheEndThrows", "; abc", "59:; 1,1\nTHROWS"},
        Split{"NumberAtTheEndThrows", "; 12", "59:; 1,1\nTHROWS"},
        Split{"OperatorAtTheEndThrows", "; +", "59:; 1,1\nTHROWS"},
        Split{"HalfPairAtTheEndThrows", "; &", "59:; 1,1\nTHROWS"},
        Split{"StringWhoseQuoteIsLastThrows", "\"a\"", "THROWS"},
        Split{"LineCommentWhoseBreakIsLastThrows", "// a\n", "THROWS"},
        Split{"CompoundAssignment", "a+=b;", "4:a 1,1\n80:+= 1,2\n4:b 1,4\n59:; 1,5\nEND"},
        Split{"LongestOperatorFirst", "a+++b;", "4:a 1,1\n77:++ 1,2\n72:+ 1,4\n4:b 1,5\n59:; 1,6\nEND"},
        Split{"AllWithEqual", "!=%=*=<===>=/=-=;",
              "90:!= 1,1\n84:%= 1,3\n82:*= 1,5\n89:<= 1,7\n85:== 1,9\n87:>= 1,11\n83:/= 1,13\n81:-= 1,15\n59:; "
              "1,17\nEND"},
        Split{"AllAlone", "!%*<=>;+-/.,?:()[]{}@;",
              "70:! 1,1\n76:% 1,2\n74:* 1,3\n89:<= 1,4\n86:> 1,6\n59:; 1,7\n72:+ 1,8\n73:- 1,9\n75:/ 1,10\n61:. 1,11\n"
              "60:, 1,12\n62:? 1,13\n63:: 1,14\n64:( 1,15\n65:) 1,16\n68:[ 1,17\n69:] 1,18\n66:{ 1,19\n67:} 1,20\n71:@ "
              "1,21\n59:; 1,22\nEND"},
        Split{"Pairs", "&&||--;", "92:&& 1,1\n91:|| 1,3\n78:-- 1,5\n59:; 1,7\nEND"},
        Split{"TypesBeforeKeywordsBeforeNames", "float3 Float3 out in output while break_ matrix4x;",
              "3:float3 1,1\n4:Float3 1,8\n7:out 1,15\n4:in 1,19\n9:output 1,22\n49:while 1,29\n4:break_ "
              "1,35\n4:matrix4x "
              "1,42\n59:; 1,50\nEND"},
        Split{
            "AllKeywords", "return constant do else evaluate for fragment if illuminance uniform vertex;",
            "8:return 1,1\n16:constant 1,8\n20:do 1,17\n22:else 1,20\n26:evaluate 1,25\n28:for 1,34\n29:fragment 1,38\n"
            "31:if 1,47\n32:illuminance 1,50\n37:uniform 1,62\n39:vertex 1,70\n59:; 1,76\nEND"},
        Split{"DotsSplitFromNames", "v.x 2.x .5;",
              "4:v 1,1\n61:. 1,2\n4:x 1,3\n5:2 1,5\n61:. 1,6\n4:x 1,7\n61:. 1,9\n5:5 "
              "1,10\n59:; 1,11\nEND"},
        Split{"DotBeforeExponentBelongsToTheNumber", "2.e3 2._ 2..;",
              "5:2.e3 1,1\n5:2 1,6\n61:. 1,7\n4:_ 1,8\n5:2. 1,10\n61:. 1,12\n59:; 1,13\nEND"},
        Split{"PlusIsNoSignOfAnExponent", "1e+5 1e-5;", "5:1e 1,1\n72:+ 1,3\n5:5 1,4\n5:1e-5 1,6\n59:; 1,10\nEND"},
        Split{"UnknownBytesTakeNoColumn", "&a#b;", "0:& 1,1\n4:a 1,1\n0:# 1,2\n4:b 1,2\n59:; 1,3\nEND"},
        Split{"BytesBeyondAscii", "a\xc3\xa4\x7f~;",
              "4:a 1,1\n0:\xc3 1,2\n0:\xa4 1,2\n0:\x7f 1,2\n0:~ 1,2\n59:; 1,2\nEND"},
        Split{"VerticalTabIsNoBlank", "\va;", "0:\v 1,1\n4:a 1,1\n59:; 1,2\nEND"},
        Split{"LinesAndColumns", "a\r\n\t b\n\n  c;", "4:a 1,1\n4:b 2,3\n4:c 4,3\n59:; 4,4\nEND"},
        Split{"BlockCommentSwallowsTwoBytes", "/* c */abc;", "2:/* c */ab 1,1\n4:c 1,6\n59:; 1,7\nEND"},
        Split{"BlockCommentAtTheEnd", "/* c */", "2:/* c */ 1,1\nEND"},
        Split{"LineCommentInBlockCommentHidesItsEnd", "/* // */ \n\n*/  ;", "2:/* // */ \n\n*/   1,1\n59:; 2,3\nEND"},
        Split{"LineCommentTakesItsBreak", "// a\nb;", "2:// a\n 1,1\n4:b 2,1\n59:; 2,2\nEND"},
        Split{"CommentInCommentTakesTheNextLine", "// a // b\nc\nd;", "2:// a // b\nc\n 1,1\n4:d 3,1\n59:; 3,2\nEND"},
        Split{"StringsCountLines", "\"a\nb\" c;", "6:a\nb 1,1\n4:c 2,3\n59:; 2,4\nEND"},
        Split{"StringLosesACommentAndAByte", "\"a//b\"\n\"c\";", "6:a//b\"\n\"c 1,1\n59:; 2,2\nEND"},
        Split{"StringsHaveNoEscapes", "\"\\\"x;", "6:\\ 1,1\n4:x 1,3\n59:; 1,4\nEND"}));

TEST(Tokenizer, ReadsNumbers)
{
    const struct
    {
        const char* source;
        float value;
        std::uint64_t truncated;
        bool fractional;
    } cases[] = {
        {"3.25;", 3.25f, 3, true},
        {"4.0;", 4.0f, 4, false},
        {"1e-2;", 0.01f, 0, true},
        {"1e;", 1.0f, 1, false},
        {"1e-;", 1.0f, 1, false},
        {"2.e3;", 2000.0f, 2000, false},
        {"16777217;", 16777216.0f, 16777216, false}, // by way of a float
        {"0.1;", 0.1f, 0, true},
        {"1.000000000000000;", 1.0f, 1, false},
        {"123456789012345;", 123456789012345.0f, 123456788103168, false},
        {"1234567890123.45;", 1234567890123.45f, 1234567954432, false},
        {"8388609.5;", 8388610.0f, 8388610, false},
        {"18446744073709551615;", 0x1p64f, UINT64_MAX, false},
        {"16777217.0000000001;", 16777216.0f, 16777216, false}, // by way of a double
        {"1e30;", 1e30f, UINT64_MAX, true},
        {"1e999;", HUGE_VALF, UINT64_MAX, true},
        {"1e-999;", 0.0f, 0, false},
    };
    for (const auto& c : cases)
    {
        const Token token = firstOf(c.source);
        EXPECT_EQ(token.floatValue, c.value) << c.source;
        EXPECT_EQ(token.intValue, c.truncated) << c.source;
        EXPECT_EQ(token.isFractional, c.fractional) << c.source;
    }
}

TEST(Tokenizer, ResetsARecordThatIsUsedAgainExceptForItsFraction)
{
    Tokenizer tokenizer;
    tokenizer.openString("2.5 float3 x;");
    Token token;
    tokenizer.nextToken(&token);
    tokenizer.nextToken(&token);
    EXPECT_EQ(token.dataType, kFloat3);
    EXPECT_EQ(token.intValue, 1u);
    EXPECT_EQ(token.floatValue, 0.0f);
    EXPECT_TRUE(token.isFractional) << "only numbers write it";
    tokenizer.nextToken(&token);
    EXPECT_EQ(token.dataType, kInvalidType);
    EXPECT_EQ(token.position, 11u);
}

TEST(Tokenizer, EndsAgainAndAgainAndGoesOnWithNewBytes)
{
    Tokenizer tokenizer;
    Token token;
    tokenizer.nextToken(&token);
    tokenizer.nextToken(&token);
    EXPECT_EQ(token.type, TokenType::EndOfStream);
    tokenizer.openString("\na;");
    tokenizer.nextToken(&token);
    EXPECT_EQ(token.line, 2u);
}

TEST(Tokenizer, CutsSourceText)
{
    Tokenizer tokenizer;
    tokenizer.openString("alpha = beta;");
    Token first, last;
    tokenizer.nextToken(&first);
    for (int i = 0; i < 2; ++i)
        tokenizer.nextToken(&last);
    EXPECT_STREQ(tokenizer.stringify(first, last).asChar(), "alpha = b") << "through the last token's first character";
    EXPECT_STREQ(tokenizer.stringify(3, 2).asChar(), "");
    EXPECT_STREQ(tokenizer.stringify(3, 3).asChar(), "h");
    EXPECT_STREQ(tokenizer.stringify(11, 99).asChar(), "a;") << "nothing beyond the source";
    EXPECT_STREQ(tokenizer.stringify(13, 99).asChar(), "");
    EXPECT_STREQ(tokenizer.stringify(0, 0xFFFFFFFF).asChar(), "") << "a last place of -1";
    EXPECT_STREQ(tokenizer.stringify(0xFFFFFFFF, 1).asChar(), "al");
    EXPECT_STREQ(tokenizer.stringify(0x100000008, 0x10000000A).asChar(), "bet") << "the low 32 bits, from the first";
    EXPECT_STREQ(tokenizer.stringify(8, 0x20000000A).asChar(), "bet") << "to the last";
}

TEST(Tokenizer, ResetsTheRecordOfATokenThatItCannotRead)
{
    for (const char* end : {" ", "abc", "12", "+", "\"a\""})
    {
        Token token = firstOf(" 2.5;");
        token.dataType = kFloat3;
        Tokenizer tokenizer;
        tokenizer.openString(end);
        EXPECT_THROW(tokenizer.nextToken(&token), Exception);
        EXPECT_EQ(token.type, TokenType::Unknown) << end;
        EXPECT_EQ(token.text.length(), 0u) << end;
        EXPECT_EQ(token.position, 0u) << end;
        EXPECT_EQ(token.intValue, 1u) << end;
        EXPECT_EQ(token.floatValue, 0.0f) << end;
        EXPECT_EQ(token.dataType, kInvalidType) << end;
    }
}
