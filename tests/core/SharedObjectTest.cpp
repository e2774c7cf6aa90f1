#include <krender/core/IResource.h>
#include <krender/core/Ref.h>
#include <krender/core/SharedObject.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace
{

/// Stands in front of the shared base, so that the base's address is not that of the object.
struct Preceding
{
    virtual ~Preceding() = default;
    double padding[4] = {};
};

class Counted : public Preceding, public krSharedObject::SharedObject
{
public:
    explicit Counted(int& alive) : fAlive(alive) { ++fAlive; }
    ~Counted() override { --fAlive; }

private:
    int& fAlive;
};

/// A host's own counting, of the signature that it is told to override.
class Watched : public krSharedObject::SharedObject
{
public:
    explicit Watched(int& calls) : fCalls(calls) {}
    std::int32_t ref() override { return ++fCalls, SharedObject::ref(); }
    std::int32_t unref() override { return ++fCalls, SharedObject::unref(); }

private:
    int& fCalls;
};

class Failing : public krSharedObject::SharedObject
{
public:
    Failing()
    {
        fsLast = this;
        throw 1;
    }
    static void* fsLast;
};
void* Failing::fsLast = nullptr;

class alignas(64) OverAligned : public krSharedObject::SharedObject
{
};

/// What reaches the class's operator delete stays leaked; the suite allows no other leak.
void allowLeak([[maybe_unused]] void* storage)
{
#if defined(__SANITIZE_ADDRESS__)
    __lsan_ignore_object(storage);
#endif
}

} // namespace

TEST(SharedObject, LivesUntilItsLastReferenceIsGivenUp)
{
    int alive = 0;
    const krSharedObject::SharedObject* object = new Counted(alive);
    EXPECT_EQ(object->ref(), 1);
    EXPECT_EQ(object->ref(), 2);
    EXPECT_EQ(object->ref(), 3);
    EXPECT_EQ(object->unref(), 2);
    EXPECT_EQ(object->unref(), 1);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(object->unref(), 0);
    EXPECT_EQ(alive, 0);
}

TEST(SharedObject, OverridesAreCalledForConstObjectsToo)
{
    int calls = 0;
    {
        const Ref<const Watched> held(new Watched(calls));
        const krSharedObject::SharedObject* base = held.get();
        EXPECT_EQ(base->ref(), 2);
        EXPECT_EQ(base->unref(), 1);
        EXPECT_EQ(calls, 3);
    }
    EXPECT_EQ(calls, 4);
}

TEST(SharedObject, UnrefOfNeverReferencedDestroys)
{
    int alive = 0;
    EXPECT_EQ((new Counted(alive))->unref(), 0);
    EXPECT_EQ(alive, 0);
}

TEST(SharedObject, PlainDeleteIsReportedAndKeepsTheStorage)
{
    int alive = 0;
    krSharedObject::SharedObject* object = new Counted(alive);
    allowLeak(dynamic_cast<void*>(object));
    testing::internal::CaptureStdout();
    delete object;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "krSharedObject::delete called illegally (use unref)");
    EXPECT_EQ(alive, 0) << "the destructors run all the same";
}

TEST(SharedObject, IsMadeByPlainNothrowAndPlacementNew)
{
    int alive = 0;
    void* storage = ::operator new(sizeof(Counted));
    for (krSharedObject::SharedObject* object :
         {new Counted(alive), new (std::nothrow) Counted(alive), new (storage) Counted(alive)})
        EXPECT_EQ(object->unref(), 0);
    EXPECT_EQ(alive, 0);

    alignas(OverAligned) std::byte place[sizeof(OverAligned)];
    (new (place) OverAligned)->~OverAligned();
}

TEST(SharedObject, FailedConstructionReturnsTheStorageOfNothrowAndPlacementNew)
{
    alignas(Failing) std::byte place[sizeof(Failing)];
    testing::internal::CaptureStdout();
    EXPECT_THROW((void)new (std::nothrow) Failing, int);
    EXPECT_THROW((void)new (place) Failing, int);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "no illegal delete is reported";
}

TEST(SharedObject, FailedConstructionOutOfPlainNewCountsAsAnIllegalDelete)
{
    testing::internal::CaptureStdout();
    EXPECT_THROW((void)new Failing, int);
    allowLeak(Failing::fsLast);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "krSharedObject::delete called illegally (use unref)");
}

TEST(Resource, IsHeldByItsCreatorAndKeepsNameAndDirtyMark)
{
    auto* resource = new IResource;
    resource->setName("quad");
    resource->setDirty(false);
    EXPECT_STREQ(resource->name(), "quad");
    EXPECT_FALSE(resource->isDirty());
    resource->setName(nullptr);
    EXPECT_STREQ(resource->name(), "");
    EXPECT_EQ(resource->unref(), 0);
}
