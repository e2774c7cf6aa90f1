#include "SharedObjects.h"

#include <krender/draw/DrawProcedure.h>
#include <krender/draw/DrawProcedureData.h>
#include <krender/draw/DrawProcedureList.h>
#include <krender/platform/String.h>

#include <gtest/gtest.h>

#include <memory>
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

} // namespace

TEST(DrawProcedure, RunsThroughItsCallbackAloneWhetherEnabledOrNot)
{
    struct Spare : DrawProcedure
    {
        using DrawProcedure::DrawProcedure;
        [[nodiscard]] bool isClear() const { return !fSpare; }
    };
    const Held<Spare> procedure(new Spare("grid"));
    const Draw draw;
    EXPECT_TRUE(procedure->isClear() && !procedure->isEnabled() && !procedure->userData());
    procedure->execute(draw);
    procedure->setExecuteCallback([](DrawProcedure& p, const DrawProcedureData& data)
                                  { dynamic_cast<const Draw&>(data).ran.push_back(&p); });
    procedure->execute(draw);
    procedure->enable(true);
    EXPECT_TRUE(procedure->isEnabled());
    procedure->execute(draw);
    EXPECT_EQ(draw.ran, (std::vector<DrawProcedure*>(2, procedure.get())));
    procedure->enable(false);
    EXPECT_FALSE(procedure->isEnabled());
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
    static int listed;
    for (const bool all : {false, true})
    {
        listed = -1;
        const Held<DrawProcedureList> list(new DrawProcedureList);
        const Held<DrawProcedure> other(new DrawProcedure("other"));
        auto* ending = new DrawProcedure("ending");
        ending->setUserData(list.get(), [](void* data)
                            { return listed = static_cast<DrawProcedureList*>(data)->find("ending") ? 1 : 0, true; });
        for (DrawProcedure* procedure : {other.get(), ending, ending})
            list->add(procedure, false);
        ending->unref();
        all ? list->clear() : static_cast<void>(list->remove(ending));
        EXPECT_EQ(listed, 0);
        EXPECT_EQ(list->item(0), all ? nullptr : other.get());
    }
}

TEST(DrawProcedureList, HoldsAReferenceForEveryEntry)
{
    const Held<DrawProcedure> grid(new DrawProcedure("grid"));
    const Held<DrawProcedure> axes(new DrawProcedure("axes"));
    const Held<DrawProcedure> twin(new DrawProcedure("grid"));
    Held<DrawProcedureList> list(new DrawProcedureList);
    const auto order = [&]
    {
        std::string letters;
        for (unsigned i = 0; const DrawProcedure* entry = list->item(i); ++i)
            letters += entry == grid.get() ? 'g' : entry == axes.get() ? 'a' : 't';
        return letters;
    };
    EXPECT_TRUE(list->add(grid.get(), true)) << "an empty list has no name to clash with";
    EXPECT_FALSE(list->add(twin.get(), true) || list->insertAt(twin.get(), 0, true));
    EXPECT_FALSE(list->add(nullptr, false) || list->insertAt(nullptr, 0, false) || list->remove(nullptr));
    EXPECT_EQ(references(*twin), 1) << "a refused procedure is not held";
    EXPECT_TRUE(list->insertAt(axes.get(), 0, true) && list->insertAt(twin.get(), 1, false));
    EXPECT_TRUE(list->insertAt(grid.get(), 99, false));
    EXPECT_EQ(order(), "atgg");
    EXPECT_EQ(references(*grid), 3);

    EXPECT_EQ(list->find("grid"), twin.get()) << "the first of the name";
    EXPECT_TRUE(!list->find("gri") && !list->find(static_cast<const char*>(nullptr)));
    Held<DrawProcedureList> found(new DrawProcedureList);
    EXPECT_EQ(list->findAll("grid", *found), 3u);
    EXPECT_EQ(references(*grid), 5);
    EXPECT_EQ(found->item(0), twin.get());
    found.reset();
    EXPECT_EQ(list->findAll("axes", *list), 1u) << "a list may be searched into itself";
    EXPECT_EQ(list->findAll("none", *list), 0u);
    EXPECT_EQ(order(), "atgga");

    EXPECT_TRUE(list->remove(grid.get()));
    EXPECT_EQ(references(*grid), 1) << "repeated entries go together, each with its reference";
    EXPECT_FALSE(list->remove(grid.get()));
    EXPECT_EQ(order(), "ata");
    list.reset();
    EXPECT_TRUE(references(*axes) == 1 && references(*twin) == 1);
}
