#include "WorkingFolder.h"

#include <krview/FileWatch.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace
{

/// A folder with a file that is watched, at moments of the test's own.
class Watch : public testing::Test
{
public:
    Watch()
    {
        write("as it was");
        watch.watch({"file", "other"}, FileWatch::now());
        EXPECT_FALSE(hasChangedAfter(FileWatch::kRest)) << "of itself";
    }
    void write(const std::string& text) const { place.write("file", text); }
    bool hasChangedAfter(std::chrono::milliseconds time) { return watch.hasChanged(now += time); }

    static constexpr std::chrono::milliseconds kMoment{1};

    WorkingFolder place;
    FileWatch watch;
    FileWatch::Clock::time_point now;
};

TEST_F(Watch, TellsOfAChangeOnceAndWhenItRests)
{
    write("");
    EXPECT_FALSE(hasChangedAfter(kMoment)) << "while it is written";
    write("as it is");
    EXPECT_FALSE(hasChangedAfter(FileWatch::kRest)) << "just when it is written";
    EXPECT_FALSE(hasChangedAfter(FileWatch::kRest - kMoment));
    EXPECT_TRUE(hasChangedAfter(kMoment));
    EXPECT_FALSE(hasChangedAfter(FileWatch::kRest));
}

TEST_F(Watch, PassesOverAFileThatIsAwayForAMoment)
{
    std::filesystem::rename("file", "backup");
    EXPECT_FALSE(hasChangedAfter(kMoment));
    std::filesystem::rename("backup", "file");
    EXPECT_FALSE(hasChangedAfter(FileWatch::kRest)) << "just when it is back";
    EXPECT_TRUE(hasChangedAfter(FileWatch::kRest)) << "another may have come in its place";

    std::filesystem::remove("file");
    EXPECT_FALSE(hasChangedAfter(kMoment));
    EXPECT_TRUE(hasChangedAfter(FileWatch::kRest)) << "it is gone";
}

TEST_F(Watch, KeepsAChangeThatIsUnderWay)
{
    write("new");
    EXPECT_FALSE(hasChangedAfter(kMoment));
    watch.watch({"file"}, FileWatch::now()); // another file had changed, and all was read again
    EXPECT_TRUE(hasChangedAfter(FileWatch::kRest));
}

TEST_F(Watch, SeesWhatAppears)
{
    place.write("other", "there");
    EXPECT_FALSE(hasChangedAfter(kMoment));
    EXPECT_TRUE(hasChangedAfter(FileWatch::kRest));
}

TEST_F(Watch, TakesANewFileForOneThatWasNotThereWhenItWasLookedFor)
{
    const auto before = FileWatch::now();
    place.write("third", "there");
    watch.watch({"third"}, before);
    EXPECT_FALSE(hasChangedAfter(kMoment));
    EXPECT_TRUE(hasChangedAfter(FileWatch::kRest));
}

} // namespace
