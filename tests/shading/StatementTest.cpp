#include <krender/shading/Statement.h>

#include <krender/platform/String.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <vector>

using namespace krShadingDag;

namespace
{

std::size_t gAllocations = 0;

} // namespace

// Counted, so that a test can tell that nothing was allocated.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++gAllocations;
    if (void* storage = std::malloc(size))
        return storage;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* storage) noexcept { std::free(storage); }
[[gnu::noinline]] void operator delete(void* storage, std::size_t) noexcept { std::free(storage); }

namespace
{

Statement* append(StatementCompound& list, StatementType type, const char* text)
{
    Statement* statement = list.appendStatement(nullptr);
    statement->setType(type);
    statement->setText(text, true);
    return statement;
}

std::string print(const StatementCompound& list) { return list.toString("", "\t").asChar(); }

constexpr unsigned kDeep = 200'000;

/// Blocks within each other, with an illuminance block at the bottom.
void buildDeepTree(StatementCompound& list)
{
    StatementCompound* level = &list;
    for (unsigned depth = 0; depth < kDeep; ++depth)
        level = &append(*level, StatementType::Block, "")->children();
    append(*level, StatementType::Illuminance, "");
}

/// a; { b; illuminance { c; } } d;
void buildTree(StatementCompound& list)
{
    list.appendLiteralStatement("a;");
    Statement* block = append(list, StatementType::Block, "");
    block->children().appendLiteralStatement("b;");
    append(block->children(), StatementType::Illuminance, "")->children().appendLiteralStatement("c;");
    list.appendLiteralStatement("d;");
}

} // namespace

TEST(StatementPrinting, EveryKind)
{
    const struct
    {
        StatementType type;
        const char* text;
        const char* printed;
    } kinds[] = {
        {StatementType::Invalid, "x;", "  x;"},
        {StatementType::Simple, "x;", "  x;"},
        {StatementType::Opaque, "x;", "  x;"},
        {StatementType::Literal, "  x;\n   y;", "  x;\n   y;"},
        {StatementType::Block, "unseen", "  {\n  \ta;\n  \tb;\n  }"},
        {StatementType::Illuminance, "unseen", "  illuminance\n  {\n  \ta;\n  \tb;\n  }"},
        {static_cast<StatementType>(6), "unseen", "UNRECOGNIZED COMPOUND TYPE!!!"},
        {StatementType::If, "if (x\n> 0)", "  if (x\n  > 0)\n  {\n  \ta;\n  \tb;\n  }"},
        {StatementType::Else, "unseen", "  else\n  {  \ta;\n  \tb;\n  }"}, // no break behind its brace
        {static_cast<StatementType>(9), "unseen", "UNRECOGNIZED COMPOUND TYPE!!!"},
    };
    StatementCompound list;
    std::string all;
    for (const auto& kind : kinds)
    {
        Statement* statement = append(list, kind.type, kind.text);
        if (statement->isCompound())
            for (const char* child : {"a;", "b;"})
                statement->children().appendLiteralStatement(child);
        EXPECT_STREQ(statement->toString("  ", "\t").asChar(), kind.printed);
        all.append(kind.printed).append("\n");
    }
    EXPECT_EQ(std::string(list.toString("  ", "\t").asChar()), all);
    EXPECT_STREQ(Statement().toString(" ", "\t").asChar(), " !!!INVALID!!!\n");
    EXPECT_EQ(print(StatementCompound()), "");
}

TEST(StatementPrinting, IndentsAnew)
{
    const struct
    {
        const char* text;
        const char* expected;
    } cases[] = {
        {"  a\n    b\n\n  c", "\ta\n  \tb\n\n\tc"}, // deeper blanks come out before the prefix
        {" a\n  \n  b", "\ta\n \n \tb"},
        {"", ""},
        {" \t ", ""},
        {"a\n   ", "\ta\n   "},
        {"\ta\n b\n\t\tc\n", "\ta\n\tb\n\t\tc\n"},
        {"\n\na b", "\n\n\ta b"},
        {" a \t b\n\n\t  c", "\ta \t b\n\n  \tc"},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(indent(c.text, "\t").asChar(), c.expected) << c.text;
}

TEST(StatementCompound, FindsInPreOrder)
{
    StatementCompound list;
    buildTree(list);
    append(list, StatementType::Illuminance, "second");
    Statement* found = list.findStatement(StatementType::Illuminance);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->parent(), &list.statement(1)->children()) << "nested before a later sibling";
    list.statement(0)->children().appendLiteralStatement("")->setType(StatementType::Else);
    EXPECT_EQ(list.findStatement(StatementType::Else), nullptr) << "below a statement that is not compound";
    bool here = true;
    EXPECT_EQ(list.findIndex(found, here), 0u);
    EXPECT_FALSE(here) << "an index is asked of the list itself, not of what is below";
}

TEST(StatementCompound, InsertsAroundAStatement)
{
    StatementCompound list;
    Statement* d = list.appendLiteralStatement("d");
    list.insertNewStatement(d, false)->setText("c", true);
    list.insertNewStatement(d, true)->setText("e", true);
    list.insertNewStatementBefore(0)->setText("b", true);
    list.insertNewStatementBefore(list.size())->setText("f", true);
    EXPECT_EQ(print(list), "b\nc\nd\ne\nf\n");
    for (unsigned i = 0; i < list.size(); ++i)
        EXPECT_EQ(list.statement(i)->parent(), &list);
    EXPECT_EQ(d->type(), StatementType::Literal);
    EXPECT_TRUE(d->isLiteral());
    StatementCompound other;
    EXPECT_EQ(other.insertNewStatement(d, true), nullptr);
}

TEST(StatementCompound, RemovesOnlyRangesThatItHas)
{
    StatementCompound list;
    for (const char* text : {"a", "b", "c", "d", "e"})
        list.appendLiteralStatement(text);
    EXPECT_FALSE(list.removeStatements(2, 1));
    EXPECT_FALSE(list.removeStatements(0, 5));
    EXPECT_EQ(list.size(), 5u);
    EXPECT_TRUE(list.removeStatements(1, 2));
    EXPECT_EQ(print(list), "a\nd\ne\n");
    EXPECT_TRUE(list.removeStatement(list.statement(2)));
    EXPECT_FALSE(list.removeStatement(static_cast<const Statement*>(nullptr)));
    EXPECT_TRUE(list.removeStatement(0u));
    EXPECT_EQ(print(list), "d\n");
}

TEST(StatementCompound, CopiesAreDeepAndBelongToTheirList)
{
    StatementCompound source, copy;
    buildTree(source);
    const std::string printed = print(source);
    EXPECT_EQ(copy.appendStatementsFrom(StatementCompound()), nullptr);
    copy.appendLiteralStatement("gone");
    copy.cloneFrom(source);
    source.clear();
    EXPECT_EQ(print(copy), printed);
    EXPECT_EQ(copy.statement(1)->parent(), &copy);

    const Statement* firstAdded = copy.appendStatementsFrom(copy);
    EXPECT_EQ(firstAdded, copy.statement(3)) << "a list appended to itself";
    EXPECT_EQ(print(copy), printed + printed);

    Statement alone;
    alone.setParent(&copy);
    alone.cloneFrom(*copy.statement(1));
    EXPECT_FALSE(alone.hasParent());
    EXPECT_EQ(alone.children().statement(0)->parent(), &alone.children());
    EXPECT_EQ(alone.toString("", "\t").asChar(), std::string("{\n\tb;\n\tilluminance\n\t{\n\t\tc;\n\t}\n}"));
}

TEST(StatementCompound, CopiesFromBelowAndFromAbove)
{
    const auto illuminance = [](StatementCompound& list) { return list.findStatement(StatementType::Illuminance); };
    const struct
    {
        const char* name;
        void (*copy)(Statement& block, Statement& illuminance);
        const char* printed;
    } cases[] = {
        {"statement from below", [](Statement& block, Statement& below) { block.cloneFrom(below); },
         "illuminance\n{\n\tc;\n}"},
        {"statement from above", [](Statement& block, Statement& below) { below.cloneFrom(block); },
         "{\n\tb;\n\t{\n\t\tb;\n\t\tilluminance\n\t\t{\n\t\t\tc;\n\t\t}\n\t}\n}"},
        {"statement from itself",
         [](Statement& block, Statement& below) { below.cloneFrom(*block.children().statement(1)); },
         "{\n\tb;\n\tilluminance\n\t{\n\t\tc;\n\t}\n}"},
        {"list from below", [](Statement& block, Statement& below) { block.children().cloneFrom(below.children()); },
         "{\n\tc;\n}"},
        {"list from above", [](Statement& block, Statement& below) { below.children().cloneFrom(block.children()); },
         "{\n\tb;\n\tilluminance\n\t{\n\t\tb;\n\t\tilluminance\n\t\t{\n\t\t\tc;\n\t\t}\n\t}\n}"},
        {"list from itself", [](Statement&, Statement& below) { below.children().cloneFrom(below.children()); },
         "{\n\tb;\n\tilluminance\n\t{\n\t\tc;\n\t}\n}"},
        {"appended from above",
         [](Statement& block, Statement& below) { below.children().appendStatementsFrom(block.children()); },
         "{\n\tb;\n\tilluminance\n\t{\n\t\tc;\n\t\tb;\n\t\tilluminance\n\t\t{\n\t\t\tc;\n\t\t}\n\t}\n}"},
    };
    for (const auto& c : cases)
    {
        StatementCompound tree;
        buildTree(tree);
        Statement& block = *tree.statement(1);
        c.copy(block, *illuminance(tree));
        EXPECT_STREQ(block.toString("", "\t").asChar(), c.printed) << c.name;
    }
}

TEST(StatementCompound, TreesMayBeDeep)
{
    StatementCompound tree;
    buildDeepTree(tree);
    const Statement* const bottom = tree.findStatement(StatementType::Illuminance);
    ASSERT_NE(bottom, nullptr);
    EXPECT_EQ(tree.findStatement(StatementType::Else), nullptr);
    StatementCompound copy;
    copy.cloneFrom(tree);
    EXPECT_NE(copy.findStatement(StatementType::Illuminance), bottom);
    EXPECT_EQ(copy.toString("", "").length(), kDeep * 4 + 16);
    copy.statement(0)->cloneFrom(*copy.statement(0)->children().statement(0));
    EXPECT_EQ(copy.statement(0)->toString("", "").length(), (kDeep - 1) * 4 + 15);
}

TEST(StatementCompound, ClearingAllocatesNothingAndKeepsTheStorage)
{
    StatementCompound list;
    buildTree(list);
    buildDeepTree(list);
    buildTree(list);
    std::size_t before = gAllocations;
    list.clear();
    EXPECT_EQ(gAllocations, before);
    EXPECT_TRUE(list.empty());
    std::unique_ptr<Statement> statement = std::make_unique<Statement>();
    before = gAllocations;
    list.appendStatement(statement.release());
    EXPECT_EQ(gAllocations, before);
}

struct SourceText
{
    const char* name;
    StatementType type;
    const char* text;
    const char* tokens;
    friend std::ostream& operator<<(std::ostream& out, const SourceText& row) { return out << row.name; }
};
class StatementTokens : public testing::TestWithParam<SourceText>
{
};

TEST_P(StatementTokens, AreFixedWithTheText)
{
    Statement statement;
    statement.setType(GetParam().type);
    statement.setSourceText(GetParam().text, {}, 0);
    statement.setType(GetParam().type == StatementType::If ? StatementType::Opaque : StatementType::If);
    EXPECT_STREQ(toString(statement.tokens()).asChar(), GetParam().tokens);
}

INSTANTIATE_TEST_SUITE_P(Texts, StatementTokens,
                         testing::Values(SourceText{"Opaque", StatementType::Opaque, "x /* c */   = a; // d\n", "xx=a"},
                                         SourceText{"LoneSemicolon", StatementType::Opaque, ";", ""},
                                         SourceText{"NoSemicolon", StatementType::Opaque, "x = a )", "xx=a)"},
                                         SourceText{"OneToken", StatementType::Literal, "x;", "xx"},
                                         SourceText{"CutInAToken", StatementType::Opaque, "x = \"open", "xx="},
                                         SourceText{"CutInAComment", StatementType::Opaque, "x = /* open", "xx="},
                                         SourceText{"Blanks", StatementType::Opaque, "x;  \n", "xx"},
                                         SourceText{"EmptyOpaque", StatementType::Opaque, "", ""},
                                         SourceText{"Condition", StatementType::If, "if (a > /* c */   b)", "a>b"},
                                         SourceText{"EmptyCondition", StatementType::If, "if ()", ""},
                                         SourceText{"ConditionTooShort", StatementType::If, "x;", ""},
                                         SourceText{"EmptyIf", StatementType::If, "", ""}),
                         [](const testing::TestParamInfo<SourceText>& row) { return row.param.name; });

TEST(StatementTokens, AreTheMakersUntilTheTextChanges)
{
    Token token;
    token.text = "made";
    Statement statement;
    statement.setSourceText("x;", {}, 0);
    statement.setTokens({token, token});
    statement.setType(StatementType::If);
    Statement copy;
    copy.cloneFrom(statement);
    EXPECT_STREQ(toString(copy.tokens()).asChar(), "mademade");
    statement.setText("y;", false);
    EXPECT_TRUE(statement.tokens().empty());
    EXPECT_FALSE(statement.isLiteral());
    copy.setParent(&statement.children());
    copy.clear();
    EXPECT_TRUE(copy.tokens().empty());
    EXPECT_FALSE(copy.hasParent());
    EXPECT_FALSE(copy.isLiteral());
    EXPECT_STREQ(copy.text().asChar(), "!!!INVALID!!!\n");
    EXPECT_EQ(copy.type(), StatementType::Invalid);
}
