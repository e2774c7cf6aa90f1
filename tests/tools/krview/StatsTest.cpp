#include "Program.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace
{

constexpr const char* kLambert = KRENDER_SHARE "/materials/lambert.krs";

/// What a run says of itself.
std::map<std::string, long> statsOf(std::vector<std::string> arguments)
{
    const Workplace place;
    arguments.insert(arguments.end(), {"--size", "64x64", "--stats"});
    const Outcome outcome = place.run(KRVIEW_PROGRAM, arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::map<std::string, long> stats;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);)
        if (const std::size_t space = line.rfind(' '); space != std::string::npos)
            stats[line.substr(0, space)] = std::stol(line.substr(space + 1));
    return stats;
}

TEST(Uploads, OfAShapeThatStaysHappenOnce)
{
    const std::vector<std::string> sphere{"--material", kLambert, "--frames"};
    auto once = sphere;
    once.emplace_back("1");
    auto often = sphere;
    often.emplace_back("6");
    auto first = statsOf(once);
    auto last = statsOf(often);
    EXPECT_EQ(last["frames"], 6);
    EXPECT_EQ(first["uploads"], 6) << "four streams and two lists";
    EXPECT_EQ(last["uploads"], first["uploads"]);
    EXPECT_EQ(last["device bytes"], first["uploaded bytes"]);
}

TEST(Uploads, OfParticlesAreWhatMoves)
{
    const std::vector<std::string> fountain{KRENDER_SHARE "/scenes/fountain.json", "--frames"};
    auto once = fountain;
    once.emplace_back("1");
    auto often = fountain;
    often.emplace_back("6");
    auto first = statsOf(once);
    auto last = statsOf(often);
    EXPECT_EQ(first["uploads"], 2 + 4) << "texture coordinates and the list stay";
    EXPECT_EQ(last["uploads"], 2 + 6 * 4);
    EXPECT_EQ(last["device bytes"], first["device bytes"]) << "what has moved on stays on the device";
}

TEST(Culling, LeavesOutWhatIsNotInView)
{
    const std::vector<std::string> cubes{"--material", kLambert, "--frames", "1", "--grid"};
    auto small = cubes;
    small.emplace_back("1");
    EXPECT_EQ(statsOf(small)["culled"], 0);
    auto large = cubes;
    large.emplace_back("30");
    auto stats = statsOf(large);
    EXPECT_EQ(stats["objects"], 900);
    EXPECT_GT(stats["culled"], 450) << "the eye is within the grid, and half of it at the least is behind";
    EXPECT_LT(stats["culled"], 900);
}

} // namespace
