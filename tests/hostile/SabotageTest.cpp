// What the programs do when the system around them fails.
#include "Attacks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <tuple>

namespace
{

using Words = std::vector<std::string>;
using Environment = std::vector<std::pair<std::string, std::string>>;

/// Runs a program with the library that lets things fail.
Outcome sabotaged(const Workplace& place, const std::string& program, const Words& arguments, Environment environment)
{
    environment.emplace_back("LD_PRELOAD", SABOTAGE);
    return place.run(program, arguments, {.environment = std::move(environment)});
}

class WithoutMemory : public testing::TestWithParam<Words>
{
};

// From some call on there is no memory, for each call of the run, in steps.
TEST_P(WithoutMemory, ProgramsSaySoAndEnd)
{
    if (kIsSanitized)
        GTEST_SKIP() << "sanitizers bring their own memory";
    const Workplace place;
    writeMaterial(place, "illuminance { outRGBA.r += gLightDiffuseColor.r; }\n");
    place.write("s.json", R"({"material": "m.krs", "inputs": {"u": 0.5}})");
    const bool isKrview = GetParam().front() == "krview";
    const Words arguments(GetParam().begin() + (isKrview ? 1 : 0), GetParam().end());
    std::size_t refused = 0;
    for (std::size_t calls = 0;; calls += 1 + calls / 40)
    {
        const Outcome outcome = sabotaged(place, isKrview ? KRVIEW_PROGRAM : KRSLC_PROGRAM, arguments,
                                          {{"KRENDER_FAIL_AFTER", std::to_string(calls)}});
        if (outcome.status == 0)
            break;
        ++refused;
        ASSERT_EQ(outcome.status, 2) << calls << " calls: " << outcome.err;
        ASSERT_NE(outcome.err, "") << calls << " calls";
        ASSERT_EQ(place.names(), (Words{"m.krs", "s.json"})) << calls << " calls";
    }
    EXPECT_GT(refused, 80u);
}

INSTANTIATE_TEST_SUITE_P(
    Of, WithoutMemory,
    testing::Values(Words{"compile", "--material", "m.krs", "--light", "k=headLight", "--target", "all", "-o", "x"},
                    Words{"compile", "--plain", "--material", "m.krs", "--light", "k=headLight", "-o", "x"},
                    Words{"compile", "--material", "m.krs", "--validate", "-o", "-"},
                    Words{"check", "-Wplain", "m.krs"}, Words{"check", "--json", "m.krs"},
                    Words{"interface", "--json", "m.krs"}, Words{"specs", "--json", "m.krs"}, Words{"tokens", "m.krs"}),
    [](const auto& given)
    {
        std::string name;
        for (const std::string& word : given.param)
            std::copy_if(word.begin(), word.end(), std::back_inserter(name),
                         [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
        return name;
    });

class Signals : public testing::TestWithParam<std::tuple<int, const char*>>
{
};

// A signal behind each change to files and folders leaves the outputs of this run or of the one before, and nothing else.
TEST_P(Signals, LeaveOutputsWhole)
{
    if (kIsSanitized)
        GTEST_SKIP() << "sanitizers call what is sabotaged before it is there";
    const auto [signal, noTmpfile] = GetParam();
    const Workplace place;
    writeMaterial(place, "");
    const Words arguments{"compile", "--material", "m.krs", "--target", "glsl,cg", "-o", "new/folder/x"};
    const Words names{"x.frag", "x.frag.cg", "x.vert", "x.vert.cg"};
    Environment environment{{noTmpfile, "1"}};
    environment.emplace_back("KRENDER_SIGNAL", "");
    bool endsByItself = false;
    for (const bool overOld : {false, true})
    {
        int changes = 0;
        for (endsByItself = false; !endsByItself; ++changes)
        {
            std::filesystem::remove_all(place.path() / "new");
            if (overOld)
            {
                std::filesystem::create_directories(place.path() / "new/folder");
                for (const std::string& name : names)
                    place.write("new/folder/" + name, "old");
            }
            environment.back().second = std::to_string(signal) + ':' + std::to_string(changes);
            const Outcome outcome = sabotaged(place, KRSLC_PROGRAM, arguments, environment);
            endsByItself = outcome.status == 0;
            ASSERT_TRUE(endsByItself || outcome.status == 128 + signal) << outcome.status << outcome.err;

            Words found;
            std::error_code failure;
            for (const auto& entry : std::filesystem::directory_iterator(place.path() / "new/folder", failure))
                found.push_back(entry.path().filename().string());
            std::sort(found.begin(), found.end());
            const bool isNew = place.read("new/folder/x.vert").size() > 3;
            if (overOld || isNew)
                ASSERT_EQ(found, names) << "behind change " << changes;
            else
                ASSERT_EQ(place.names(), Words{"m.krs"}) << "behind change " << changes;
            for (const std::string& name : found)
                ASSERT_EQ(place.read("new/folder/" + name) == "old", !isNew) << "behind change " << changes;
        }
        EXPECT_GT(changes, 9) << "too few calls are seen";
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Signals,
                         testing::Combine(testing::Values(SIGINT, SIGTERM, SIGPIPE),
                                          testing::Values("WITH_TMPFILE", "KRENDER_NO_TMPFILE")));

} // namespace
