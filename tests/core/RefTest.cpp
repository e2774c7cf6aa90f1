#include <krender/core/IResource.h>
#include <krender/core/Ref.h>
#include <krender/core/SharedObject.h>

#include <gtest/gtest.h>

#include <concepts>
#include <string>
#include <utility>

namespace
{

/// Counts and never ends, so that one unref() too many shows as well as one too few.
struct Probe
{
    void ref() { ++references; }
    void unref() { --references; }
    int references = 0;
};
struct DerivedProbe : Probe
{
};

/// Looks, when it ends, at the reference that held it.
struct Last
{
    void ref() {}
    void unref() { heldAtItsEnd = holder->get(); }
    const Ref<Last>* holder = nullptr;
    const Last* heldAtItsEnd = nullptr;
};

class Host : public krSharedObject::SharedObject
{
};

} // namespace

TEST(Ref, HoldsOneReferenceForEachCopy)
{
    DerivedProbe probe;
    {
        Ref held(&probe);
        EXPECT_EQ(probe.references, 1);
        const Ref copy = held;
        EXPECT_EQ(probe.references, 2);
        const Ref<DerivedProbe>& source = held;
        Ref moved = std::move(held);
        EXPECT_EQ(probe.references, 2);
        EXPECT_EQ(source, nullptr);
        held = copy;
        EXPECT_EQ(probe.references, 3);
        EXPECT_EQ(held, copy);
        held = nullptr;
        EXPECT_EQ(probe.references, 2);
        held = std::move(moved);
        EXPECT_EQ(probe.references, 2);
        moved = nullptr;
        swap(held, moved);
        EXPECT_EQ(source, nullptr);
        EXPECT_EQ(moved, &probe);
    }
    EXPECT_EQ(probe.references, 0);
}

TEST(Ref, AssignsItselfAndWhatItHoldsAlready)
{
    Probe probe;
    {
        Ref held(&probe);
        Ref<Probe>& same = held;
        held = same;
        EXPECT_EQ(probe.references, 1);
        held = std::move(same);
        EXPECT_EQ(probe.references, 1);
        held = Ref(&probe);
        EXPECT_EQ(probe.references, 1);
        EXPECT_EQ(held, &probe);
    }
    EXPECT_EQ(probe.references, 0);
}

TEST(Ref, TakesOverAndGivesUpWithoutCounting)
{
    Probe probe;
    probe.ref();
    auto held = Ref<Probe>::adopt(&probe);
    EXPECT_EQ(probe.references, 1);
    EXPECT_EQ(held.release(), &probe);
    EXPECT_EQ(probe.references, 1);
    EXPECT_FALSE(held);
    held = Ref<Probe>::adopt(&probe);
    held = Ref<Probe>(nullptr);
    EXPECT_EQ(probe.references, 0);
}

TEST(Ref, ConvertsToBaseAndToConst)
{
    DerivedProbe probe;
    {
        Ref derived(&probe);
        const Ref<const Probe> copy = derived;
        EXPECT_EQ(probe.references, 2);
        const Ref<DerivedProbe>& source = derived;
        const Ref<Probe> moved = std::move(derived);
        EXPECT_EQ(probe.references, 2);
        EXPECT_FALSE(source);
        EXPECT_EQ(moved, &probe);
        EXPECT_EQ(copy, &probe);
    }
    EXPECT_EQ(probe.references, 0);
    static_assert(!std::convertible_to<Ref<Probe>, Ref<DerivedProbe>>);
    static_assert(!std::convertible_to<Ref<const Probe>, Ref<Probe>>);
}

TEST(Ref, HoldsTheNewObjectWhenTheOldOneEnds)
{
    Last last;
    Last next;
    Ref held(&last);
    last.holder = next.holder = &held;
    held = Ref(&next);
    EXPECT_EQ(last.heldAtItsEnd, &next);
}

TEST(MakeRef, HoldsTheOnlyReferenceWhicheverCountTheClassStartsWith)
{
    const auto host = makeRef<Host>();
    EXPECT_EQ(host->ref(), 2);
    EXPECT_EQ(host->unref(), 1);
    const auto resource = makeRef<const IResource>();
    EXPECT_EQ(resource->ref(), 2);
    EXPECT_EQ(resource->unref(), 1);
}
