#include "CaseName.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

namespace
{

constexpr std::size_t kMegabyte = 1 << 20;

std::string repeated(std::string_view piece, std::size_t bytes)
{
    std::string text;
    text.reserve(bytes + piece.size());
    while (text.size() < bytes)
        text += piece;
    return text;
}

/// A source of which each way of reading says its own.
struct Hostile
{
    const char* about;
    std::string source;
    const char* full;  ///< the first line holds it; empty: there is no error
    const char* plain; ///< likewise with --plain
};

} // namespace

class HostileSources : public testing::TestWithParam<Hostile>
{
};

// None of these may crash, hang or flood the screen; the run is ended when it takes too long.
TEST_P(HostileSources, GetAnAnswer)
{
    const Workplace place;
    place.write("x.krs", GetParam().source);
    const auto check = [&](const std::vector<std::string>& arguments, const std::string& message)
    {
        const Outcome outcome = place.krslc(arguments);
        EXPECT_EQ(outcome.status, message.empty() ? 0 : 1);
        EXPECT_NE(outcome.err.substr(0, outcome.err.find('\n')).find(message), std::string::npos)
            << outcome.err.substr(0, 1000);
        EXPECT_LT(outcome.err.size(), kMegabyte);
    };
    check({"check", "-Wplain", "x.krs"}, GetParam().full);
    check({"check", "--plain", "x.krs"}, GetParam().plain);
    for (const char* command : {"tokens", "specs", "interface"})
        EXPECT_LT(place.krslc({command, "x.krs"}, {.standardOutput = "/dev/null"}).status, 2) << command;
}

INSTANTIATE_TEST_SUITE_P(
    All, HostileSources,
    testing::Values(
        Hostile{"a name of a megabyte", "float " + std::string(kMegabyte, 'n') + "(float a);\n", "long-word", ""},
        Hostile{"a type of a megabyte", std::string(kMegabyte, 'n') + " f(float a);\n", "long-word",
                "x.krs:1:1: error: Unrecognized"},
        Hostile{"zero bytes", std::string(kMegabyte, '\0'),
                "1:1: error: ", "1:1: error: Header of more than 50000 tokens"},
        Hostile{"all bytes",
                []
                {
                    std::string text;
                    for (unsigned i = 0; i < kMegabyte; ++i)
                        text += static_cast<char>(i * 7 + i / 251);
                    return text;
                }(),
                "1:1: error: '\\x00", "1:1: error: the source ends within this header"},
        Hostile{"half a million empty statements",
                "float f(float a) {" + std::string(kMegabyte / 2, ';') + "return a; }\n", "",
                "1:19: error: Empty statement"},
        Hostile{"blocks within blocks", "float f(float a) {" + std::string(kMegabyte, '{'), "deep-nesting",
                "1:5018: error: "},
        Hostile{"ifs within ifs", "float f(bool a) {" + repeated("if(a)", kMegabyte), "deep-nesting", "5000"},
        Hostile{"the deepest blocks", "float f(float a) " + repeated("{", 5000) + "x = a;" + repeated("}", 5000) + "\n",
                "deep-nesting", ""},
        Hostile{"loops within loops", "float f(float a) {" + repeated("for(", kMegabyte) + ";}\n", "1:", ""},
        Hostile{"arguments without end", "float f(" + repeated("float a,", kMegabyte) + ");\n", "1:", "1:1: error: "},
        Hostile{"carried comments", repeated("// a // b\n", kMegabyte), "", "1:1: error: "},
        Hostile{"quotes", "float f(float a) {" + std::string(kMegabyte, '"'), "open-block", "1:"},
        Hostile{"elses", "float f(float a) {" + repeated("else ", 10000) + "x = 1; }\n", "else-without-if", ""},
        Hostile{"carriage returns", "float f(float a)\r\n{\r\n\treturn a;\r\n}\r\n", "", ""}),
    CaseName());

TEST(LargeSources, AreReadInBoundedMemory)
{
    const Workplace place;
    const auto peakOf = [&place](std::size_t megabytes)
    {
        place.write(
            "x.krs",
            repeated("float3 f(uniform float3 a, vertex float2 b)\n{\n    float x = a.x * 2.0 + b.y;\n    if (x > "
                     "1.0) { c = x; } else c = 0.5;\n    illuminance { c += dot(a, b) * 0.25; }\n}\n",
                     megabytes * kMegabyte));
        // A build with the address sanitizer would keep what has been freed.
        const Outcome outcome =
            place.krslc({"check", "--plain", "x.krs"}, {.environment = {{"ASAN_OPTIONS", "quarantine_size_mb=1"}}});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.peakKilobytes;
    };
    const std::size_t small = peakOf(2);
    const std::size_t large = peakOf(12);
    EXPECT_LT(large - small, std::size_t{5} * 10 * 1024); // five bytes a byte of source
}

TEST(LargeSources, OfTwoGigabytesAreRefusedUnread)
{
    const Workplace place;
    place.write("x.krs", "float f(float a);\n");
    std::filesystem::resize_file(place.path() / "x.krs", std::uintmax_t{2} << 30); // without taking room on the disk
    for (const auto& [command, limit] :
         {std::pair{"check", "16"}, {"interface", "16"}, {"tokens", "2047"}, {"specs", "2047"}})
    {
        const Outcome outcome = place.krslc({command, "x.krs"});
        EXPECT_EQ(outcome.status, 2) << command;
        EXPECT_EQ(outcome.err, std::string("krslc: error: cannot read 'x.krs': it has more than ") + limit + " MB\n");
    }
    EXPECT_EQ(place.krslc({"tokens", "/dev/zero"}).err,
              "krslc: error: cannot read '/dev/zero': it has more than 256 MB\n");
}

TEST(Sources, ThatCannotBeOpenedGetTheReason)
{
    const Workplace place;
    place.write("x.krs", "float f(float a);\n");
    ::chmod((place.path() / "x.krs").c_str(), 0);
    const Outcome outcome = place.krslc({"check", "x.krs"}, {.boundByModes = true});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "krslc: error: cannot read 'x.krs': Permission denied\n");
}
