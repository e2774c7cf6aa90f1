#include <krender/draw/DrawProcedure.h>
#include <krender/draw/DrawProcedureList.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

/// The references held on a procedure.
int references(const DrawProcedure* procedure)
{
    procedure->ref();
    return procedure->unref();
}

class DrawProcedureLists : public testing::Test
{
protected:
    ~DrawProcedureLists() override
    {
        list->unref();
        for (const DrawProcedure* procedure : {grid, axes, grid2})
            EXPECT_EQ(procedure->unref(), 0) << "a list kept a reference";
    }

    /// The entries' names, a letter each: g and G share the name of "grid".
    [[nodiscard]] std::string order() const
    {
        std::string letters;
        for (unsigned i = 0; const DrawProcedure* entry = list->item(i); ++i)
            letters += entry == grid ? 'g' : entry == axes ? 'a' : 'G';
        return letters;
    }

    DrawProcedure* grid = new DrawProcedure("grid");
    DrawProcedure* axes = new DrawProcedure("axes");
    DrawProcedure* grid2 = new DrawProcedure("grid");
    DrawProcedureList* list = new DrawProcedureList;
};

} // namespace

TEST_F(DrawProcedureLists, RepeatedEntriesAreHeldTwiceAndRemovedTogether)
{
    EXPECT_TRUE(list->add(grid, false));
    EXPECT_TRUE(list->add(axes, false));
    EXPECT_TRUE(list->add(grid, false));
    EXPECT_EQ(order(), "gag");
    EXPECT_EQ(references(grid), 3);
    EXPECT_TRUE(list->remove(grid));
    EXPECT_EQ(order(), "a");
    EXPECT_EQ(references(grid), 1);
    EXPECT_FALSE(list->remove(grid));
    EXPECT_FALSE(list->remove(grid2)) << "removal goes by pointer, not by name";
    EXPECT_FALSE(list->remove(nullptr));
    EXPECT_EQ(references(axes), 2);
}

TEST_F(DrawProcedureLists, UniqueNamesAreRefusedWithoutAReference)
{
    EXPECT_TRUE(list->add(grid, true)) << "nothing to clash with";
    EXPECT_FALSE(list->add(grid2, true));
    EXPECT_FALSE(list->insertAt(grid2, 0, true));
    EXPECT_FALSE(list->add(nullptr, false));
    EXPECT_FALSE(list->insertAt(nullptr, 0, false));
    EXPECT_EQ(references(grid2), 1);
    EXPECT_TRUE(list->insertAt(axes, 0, true));
    EXPECT_TRUE(list->add(grid2, false));
    EXPECT_EQ(order(), "agG");
}

TEST_F(DrawProcedureLists, InsertsAheadOfAPositionOrAtTheEnd)
{
    EXPECT_TRUE(list->insertAt(grid, 0, false));
    EXPECT_TRUE(list->insertAt(axes, 0, false));
    EXPECT_TRUE(list->insertAt(grid2, 1, false));
    EXPECT_EQ(order(), "aGg");
    EXPECT_TRUE(list->insertAt(axes, 99, false));
    EXPECT_TRUE(list->insertAt(axes, 4, false));
    EXPECT_EQ(order(), "aGgaa");
    EXPECT_EQ(references(axes), 4);
    EXPECT_EQ(list->item(5), nullptr);
}

TEST_F(DrawProcedureLists, FindsTheFirstOfANameAndAll)
{
    for (DrawProcedure* procedure : {axes, grid2, grid})
        list->add(procedure, false);
    EXPECT_EQ(list->find("grid"), grid2);
    EXPECT_EQ(list->find(krString::CString("axes")), axes);
    EXPECT_EQ(list->find("gri"), nullptr);
    EXPECT_EQ(list->find(static_cast<const char*>(nullptr)), nullptr);

    auto* found = new DrawProcedureList;
    EXPECT_EQ(list->findAll("grid", *found), 2u);
    EXPECT_EQ(found->item(0), grid2);
    EXPECT_EQ(found->item(1), grid);
    EXPECT_EQ(references(grid), 3);
    found->unref();
    EXPECT_EQ(references(grid), 2) << "the list that was filled held references of its own";

    EXPECT_EQ(list->findAll("grid", *list), 2u) << "a list may be searched into itself";
    EXPECT_EQ(order(), "aGgGg");
}

TEST_F(DrawProcedureLists, WhatAnEndCallsFindsTheListWithoutTheEntry)
{
    static DrawProcedureList* searched;
    searched = list;
    const auto search = [](void* stillListed)
    {
        *static_cast<bool*>(stillListed) = searched->find("brief") != nullptr;
        return true;
    };
    for (const bool byClear : {false, true})
    {
        bool stillListed = true;
        auto* brief = new DrawProcedure("brief");
        brief->setUserData(&stillListed, search);
        list->add(brief, false);
        brief->unref();
        if (byClear)
            list->clear();
        else
            list->remove(brief);
        EXPECT_FALSE(stillListed);
    }
}
