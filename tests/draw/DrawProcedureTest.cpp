#include <krender/draw/DrawProcedure.h>
#include <krender/draw/DrawProcedureData.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{

/// What the destroy functions were called with, in order.
std::vector<void*> destroyed;

bool destroy(void* userData)
{
    destroyed.push_back(userData);
    return false;
}

/// The host's own kind of data: the callback leaves a mark in it.
struct Draw : DrawProcedureData
{
    mutable std::vector<DrawProcedure*> ran;
};

void leaveMark(DrawProcedure& procedure, const DrawProcedureData& data)
{
    dynamic_cast<const Draw&>(data).ran.push_back(&procedure);
}

} // namespace

TEST(DrawProcedure, RunsThroughItsCallbackAloneWhetherEnabledOrNot)
{
    auto* procedure = new DrawProcedure("grid");
    EXPECT_STREQ(procedure->name(), "grid");
    EXPECT_FALSE(procedure->isEnabled());
    const Draw draw;
    for (const bool enabled : {false, true})
    {
        procedure->enable(enabled);
        EXPECT_EQ(procedure->isEnabled(), enabled);
        draw.ran.clear();
        procedure->setExecuteCallback(nullptr);
        procedure->execute(draw);
        EXPECT_TRUE(draw.ran.empty());
        procedure->setExecuteCallback(leaveMark);
        procedure->execute(draw);
        EXPECT_EQ(draw.ran, std::vector{procedure});
    }
    EXPECT_EQ(procedure->unref(), 0);
}

TEST(DrawProcedure, DestroysUserDataOnReplacementAndAtItsEnd)
{
    int first = 1;
    int second = 2;
    destroyed.clear();
    auto* procedure = new DrawProcedure;
    procedure->setUserData(&first, destroy);
    EXPECT_EQ(procedure->userData(), &first);
    procedure->setUserData(&second, nullptr);
    EXPECT_EQ(destroyed, std::vector<void*>{&first});
    procedure->setUserData(&first, destroy);
    EXPECT_EQ(destroyed.size(), 1u) << "the second data came without a destroy function";
    procedure->unref();
    EXPECT_EQ(destroyed, (std::vector<void*>{&first, &first}));
}

TEST(DrawProcedure, NullUserDataIsDestroyedAtTheEndButNotOnReplacement)
{
    destroyed.clear();
    auto* procedure = new DrawProcedure;
    procedure->setUserData(nullptr, destroy);
    procedure->setUserData(nullptr, destroy);
    EXPECT_TRUE(destroyed.empty());
    procedure->unref();
    EXPECT_EQ(destroyed, std::vector<void*>{nullptr});
}
