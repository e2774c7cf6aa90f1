#include "Krview.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <sstream>
#include <string>

namespace
{

constexpr const char* kLambert = "--material " KRENDER_SHARE "/materials/lambert.krs";
constexpr const char* kFountain = KRENDER_SHARE "/scenes/fountain.json";

/// What a run prints about itself.
std::map<std::string, long> statsOf(const std::string& scene, const std::string& arguments)
{
    const Outcome outcome = krview(Workplace(), scene + arguments + " --size 64x64 --stats");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::map<std::string, long> stats;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);)
        if (const std::size_t space = line.rfind(' '); space != std::string::npos)
            stats[line.substr(0, space)] = std::stol(line.substr(space + 1));
    return stats;
}

TEST(Uploads, OfAnUnchangedShapeHappenOnce)
{
    auto first = statsOf(kLambert, " --frames 1");
    auto last = statsOf(kLambert, " --frames 6");
    EXPECT_EQ(last["frames"], 6);
    EXPECT_EQ(first["uploads"], 6) << "four streams and two lists";
    EXPECT_EQ(last["uploads"], first["uploads"]);
    EXPECT_EQ(last["device bytes"], first["uploaded bytes"]);
}

TEST(Uploads, OfParticlesAreWhatMoves)
{
    auto first = statsOf(kFountain, " --frames 1");
    auto last = statsOf(kFountain, " --frames 6");
    EXPECT_EQ(first["uploads"], 2 + 4) << "texture coordinates and the list stay";
    EXPECT_EQ(last["uploads"], 2 + 6 * 4);
    EXPECT_EQ(last["device bytes"], first["device bytes"]) << "old copies stay on the device";
}

TEST(Culling, LeavesOutWhatIsNotInView)
{
    EXPECT_EQ(statsOf(kLambert, " --frames 1 --grid 1")["culled"], 0);
    auto stats = statsOf(kLambert, " --frames 1 --grid 30");
    EXPECT_EQ(stats["objects"], 900);
    EXPECT_GT(stats["culled"], 450) << "the eye is within the grid, and at least half of it is behind";
    EXPECT_LT(stats["culled"], 900);
}

} // namespace
