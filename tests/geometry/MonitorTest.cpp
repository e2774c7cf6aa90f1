#include "geometry/Fixtures.h"

#include <krender/geometry/GeometryLogicalGroup.h>
#include <krender/geometry/GeometryMonitor.h>

#include <gtest/gtest.h>

#include <cstdint>

TEST(GeometryMonitor, FirstStreamAfterAMarkStillCountsAsClean)
{
    const std::uint32_t generator = IResource::fsUniqueIDGenerator;
    for (const std::uint32_t start : {100u, 0x7FFFFFFEu, 0xFFFFFFFDu}) // the last one wraps between the streams
    {
        IResource::fsUniqueIDGenerator = start;
        GeometryMonitor::gNextFreeId = 0;
        const GeometryMonitor monitor; // the number 0 is one like any other
        const GeometryMonitor other;
        GeometryLogicalGroup group(nullptr);
        const Held<GeometryData> before(newStream(GeometryData::vertex, 1, {0}));
        EXPECT_TRUE(monitor.isDirty(*before, group)) << "there is no mark yet";
        monitor.markClean(group);
        const Held<GeometryData> first(newStream(GeometryData::vertex, 1, {0}));
        const Held<GeometryData> second(newStream(GeometryData::vertex, 1, {0}));
        const Held<GeometryData> third(newStream(GeometryData::vertex, 1, {0}));
        EXPECT_FALSE(monitor.isDirty(*before, group));
        EXPECT_FALSE(monitor.isDirty(*first, group));
        EXPECT_TRUE(monitor.isDirty(*second, group));
        EXPECT_TRUE(monitor.isDirty(*third, group)) << "also past the wrap";

        EXPECT_TRUE(other.isDirty(*before, group)) << "monitors have marks of their own";
        other.markClean(group);
        EXPECT_FALSE(other.isDirty(*third, group));
        EXPECT_TRUE(monitor.isDirty(*third, group));
        monitor.markClean(group);
        EXPECT_FALSE(monitor.isDirty(*third, group)) << "a second mark moves the first one on";
        const Held<GeometryData> fourth(newStream(GeometryData::vertex, 1, {0}));
        const Held<GeometryData> fifth(newStream(GeometryData::vertex, 1, {0}));
        EXPECT_FALSE(monitor.isDirty(*fourth, group));
        EXPECT_TRUE(monitor.isDirty(*fifth, group) && other.isDirty(*fifth, group));

        group.reset();
        EXPECT_TRUE(monitor.isDirty(*before, group)) << "a group that was emptied has no marks";
    }
    IResource::fsUniqueIDGenerator = generator;
}
