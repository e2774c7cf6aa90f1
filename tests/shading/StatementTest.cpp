#include <krender/shading/Statement.h>

#include <gtest/gtest.h>

using namespace krShadingDag;

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
    StatementCompound list;
    list.appendStatement(nullptr);
    append(list, StatementType::Block, "")->children().appendLiteralStatement("x = 1;");
    append(list, StatementType::Illuminance, "")->children().appendLiteralStatement("x = 2;");
    append(list, StatementType::If, "if (x > 0)")->children().appendLiteralStatement("y = 1;\nz = 2;");
    append(list, static_cast<StatementType>(6), "")->children().appendLiteralStatement("lost");
    append(list, static_cast<StatementType>(9), "");
    EXPECT_EQ(std::string(list.toString("  ", "\t").asChar()), "  !!!INVALID!!!\n\n"
                                                               "  {\n  \tx = 1;\n  }\n"
                                                               "  illuminance\n  {\n  \tx = 2;\n  }\n"
                                                               "  if (x > 0)\n  {\n  \ty = 1;\n  \tz = 2;\n  }\n"
                                                               "UNRECOGNIZED COMPOUND TYPE!!!\n"
                                                               "UNRECOGNIZED COMPOUND TYPE!!!\n");
    EXPECT_EQ(print(StatementCompound()), "");
}

TEST(StatementPrinting, ElseHasNoBreakBehindItsBrace)
{
    StatementCompound list;
    Statement* branch = append(list, StatementType::Else, "");
    branch->children().appendLiteralStatement("y = 1;");
    EXPECT_STREQ(branch->toString("", "\t").asChar(), "else\n{\ty = 1;\n}");
}

TEST(StatementPrinting, IndentsAfresh)
{
    const struct
    {
        const char* text;
        const char* expected;
    } cases[] = {
        {"  a\n    b\n\n  c", "\ta\n  \tb\n\n\tc"}, // deeper blanks come out before the prefix
        {"", ""},
        {" \t ", ""},
        {"a\n   ", "\ta\n   "},
        {"\ta\n b\n\t\tc\n", "\ta\n\tb\n\t\tc\n"},
        {"\n\na b", "\n\n\ta b"},
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
    EXPECT_EQ(list.findStatement(StatementType::Else), nullptr);
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
    EXPECT_EQ(alone.children().size(), 2u);
}

TEST(StatementCompound, TakesDeepTreesApart)
{
    StatementCompound list;
    StatementCompound* level = &list;
    for (int depth = 0; depth < 200000; ++depth)
        level = &append(*level, StatementType::Block, "")->children();
    list.clear();
    EXPECT_TRUE(list.empty());
}
