#include <krender/draw/DrawProcedure.h>
#include <krender/draw/DrawProcedureData.h>
#include <krender/draw/DrawProcedureList.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace
{

/// The host's own kind of data: the callback leaves a mark in it.
struct Draw : DrawProcedureData
{
    mutable std::vector<DrawProcedure*> ran;
};

int references(const DrawProcedure* procedure)
{
    procedure->ref();
    return procedure->unref();
}

} // namespace

TEST(DrawProcedure, RunsThroughItsCallbackAloneWhetherEnabledOrNot)
{
    struct Spare : DrawProcedure
    {
        using DrawProcedure::DrawProcedure;
        [[nodiscard]] bool isClear() const { return !fSpare; }
    };
    auto* procedure = new Spare("grid");
    const Draw draw;
    EXPECT_TRUE(procedure->isClear() && !procedure->isEnabled() && !procedure->userData());
    procedure->execute(draw);
    procedure->setExecuteCallback([](DrawProcedure& p, const DrawProcedureData& data)
                                  { dynamic_cast<const Draw&>(data).ran.push_back(&p); });
    procedure->execute(draw);
    procedure->enable(true);
    EXPECT_TRUE(procedure->isEnabled());
    procedure->execute(draw);
    EXPECT_EQ(draw.ran, (std::vector<DrawProcedure*>{procedure, procedure}));
    procedure->enable(false);
    EXPECT_FALSE(procedure->isEnabled());
    procedure->unref();
}

TEST(DrawProcedure, DestroysUserDataOnReplacementAndNullOnlyAtItsEnd)
{
    static std::vector<void*> destroyed;
    const auto destroy = [](void* data) { return destroyed.push_back(data), false; };
    int data = 0;
    auto* procedure = new DrawProcedure;
    procedure->setUserData(&data, destroy);
    procedure->setUserData(&procedure, nullptr);
    EXPECT_EQ(destroyed, std::vector<void*>{&data});
    procedure->setUserData(nullptr, destroy);
    procedure->setUserData(nullptr, destroy);
    EXPECT_EQ(destroyed.size(), 1u);
    procedure->unref();
    EXPECT_EQ(destroyed, (std::vector<void*>{&data, nullptr}));
}

// What a procedure's end calls may use the list.
TEST(DrawProcedureList, HoldsNothingOfAProcedureThatEnds)
{
    using Drop = void (*)(DrawProcedureList&);
    const std::pair<const char*, Drop> cases[] = {
        {"remove", [](DrawProcedureList& list) { list.remove(list.item(1)); }},
        {"clear", [](DrawProcedureList& list) { list.clear(); }}};
    for (const auto& [what, drop] : cases)
    {
        auto* list = new DrawProcedureList;
        auto* ending = new DrawProcedure("ending");
        auto* other = new DrawProcedure("other");
        for (DrawProcedure* procedure : {other, ending, ending})
            list->add(procedure, false);
        ending->setUserData(list, [](void* data)
                            { return static_cast<DrawProcedureList*>(data)->add(new DrawProcedure("late"), true); });
        ending->unref();
        drop(*list);
        EXPECT_FALSE(list->find("ending")) << what;
        ASSERT_TRUE(list->find("late")) << what << ": the end of the procedure added it";
        list->find("late")->unref();
        list->unref();
        other->unref();
    }
}

TEST(DrawProcedureList, HoldsAReferenceForEveryEntry)
{
    auto* grid = new DrawProcedure("grid");
    auto* axes = new DrawProcedure("axes");
    auto* twin = new DrawProcedure("grid");
    auto* list = new DrawProcedureList;
    const auto order = [=]
    {
        std::string letters;
        for (unsigned i = 0; const DrawProcedure* entry = list->item(i); ++i)
            letters += entry == grid ? 'g' : entry == axes ? 'a' : 't';
        return letters;
    };
    EXPECT_TRUE(list->add(grid, true)) << "an empty list has no name to clash with";
    EXPECT_FALSE(list->add(twin, true) || list->insertAt(twin, 0, true));
    EXPECT_FALSE(list->add(nullptr, false) || list->insertAt(nullptr, 0, false) || list->remove(nullptr));
    EXPECT_EQ(references(twin), 1) << "a refused procedure is not held";
    EXPECT_TRUE(list->insertAt(axes, 0, true) && list->insertAt(twin, 1, false) && list->insertAt(grid, 99, false));
    EXPECT_EQ(order(), "atgg");
    EXPECT_EQ(references(grid), 3);

    EXPECT_EQ(list->find("grid"), twin) << "the first of the name";
    EXPECT_EQ(list->find("gri"), nullptr);
    EXPECT_EQ(list->find(static_cast<const char*>(nullptr)), nullptr);
    auto* found = new DrawProcedureList;
    EXPECT_EQ(list->findAll("grid", *found), 3u);
    EXPECT_EQ(references(grid), 5);
    EXPECT_EQ(found->item(0), twin);
    found->unref();
    EXPECT_EQ(list->findAll("axes", *list), 1u) << "a list may be searched into itself";
    EXPECT_EQ(list->findAll("none", *list), 0u);
    EXPECT_EQ(order(), "atgga");

    EXPECT_TRUE(list->remove(grid));
    EXPECT_EQ(references(grid), 1) << "repeated entries go together, each with its reference";
    EXPECT_FALSE(list->remove(grid));
    EXPECT_EQ(order(), "ata");
    list->unref();
    for (const DrawProcedure* procedure : {grid, axes, twin})
        EXPECT_EQ(procedure->unref(), 0);
}
